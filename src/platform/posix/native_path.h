// Maps the Windows-form paths the core works with to POSIX paths, at the system-call boundary.
#pragma once

#include <string>
#include <string_view>

namespace tqv::platform {

// "\" becomes "/"; a drive prefix "X:" is replaced by the value of TQVSPOOL_DRIVE_X when that
// variable is set, and dropped otherwise.
std::string ToNativePath(std::string_view windowsPath);

}  // namespace tqv::platform
