// Finding a file whose name differs only in letter case, as a copy from Windows may spell it
// ("win.ini" for "WIN.INI"). A directory that cannot be read holds no such name.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tqv::platform {

// The name of an entry of `nativeDirectory` equal to `name` without regard to ASCII case; of
// several, the first in byte order. A scan is kept until the directory changes.
std::optional<std::string> FindEntryWithoutCase(const std::string &nativeDirectory, std::string_view name);

// Forgets every scan kept.
void ClearEntryWithoutCaseCache();

}  // namespace tqv::platform
