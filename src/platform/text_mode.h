// Line ends as the Windows C runtime writes and reads files "in text mode", on every platform:
// a file written in text mode has CR LF on disk, a file read as text yields LF.
#pragma once

#include <string>
#include <string_view>

namespace tqv::platform {

// Every LF becomes CR LF (also one that already follows a CR, as the runtime does).
std::string ToTextMode(std::string_view text);

// Every CR LF becomes LF; a lone CR stays.
std::string FromTextMode(std::string_view bytes);

}  // namespace tqv::platform
