// Numbers written as text in settings values and message headers.
#pragma once

#include <cstdint>
#include <string_view>

namespace tqv {

// As atol reads a number (leading blanks, an optional sign, the digits up to the first other
// character; no digits gives 0), but held at the ends of the 32-bit range instead of overflowing.
std::int32_t ParseLong(std::string_view text);

}  // namespace tqv
