// Texts of the string file that take one value, such as "at most %d bytes" or "no file '%s'".
// The string file is edited by hand and translated, so a format is never trusted to match the
// value: formatting cannot read an argument that was not passed, and its result is cut.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace tqv {

using FormatValue = std::variant<std::int64_t, std::string_view>;

// The format with the value put in at its first conversion of the value's kind ("%d" or "%i" for
// a number, "%s" for a text; flags, width and precision kept), "%%" as "%", every other
// conversion left as written. At most `limit` characters.
std::string FormatWithValue(std::string_view format, const FormatValue &value, std::size_t limit);

}  // namespace tqv
