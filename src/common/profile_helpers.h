// Profile (INI) values as signed numbers. A missing file or key reads as the default; a failed
// write leaves the file as it was and returns false.
#pragma once

#include <cstdint>
#include <string_view>

namespace tqv {

// The value as a signed number, read as atol reads it: leading blanks, an optional sign and the
// decimal digits up to the first other character; no digits gives 0. A missing key gives
// `defaultValue`. Values beyond the 32-bit range are held at its ends.
std::int32_t GetProfileLong(std::string_view section, std::string_view key, std::int32_t defaultValue,
                            std::string_view file);

// Writes the value as a decimal number. False when the file cannot be written.
bool WriteProfileInt(std::string_view section, std::string_view key, std::int32_t value,
                     std::string_view file);

}  // namespace tqv
