// The error text of an administration request: what the reply shows above the listing. Each
// command writes into the room its caller leaves it, given as a buffer size (at most size-1
// characters), so the commands of one form share one text. Nothing here fails; texts are cut.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "config/string_formatting.h"

namespace tqv {

// The request's buffer, and the size it hands to the form or the command.
inline constexpr std::size_t kAdminErrorTextSize = 1024;
inline constexpr std::size_t kAdminCommandRoom = kAdminErrorTextSize - 1;

inline constexpr std::string_view kErrorLineBreak = "\r\n";

// The error text becomes `text`; -1, the result of the command that fails with it.
int FailWithText(std::string &errorText, std::size_t size, std::string_view text);
// The error text becomes string `number` of the string file, or that string as the format of
// `value`; -1.
int FailWithString(std::string &errorText, std::size_t size, int number);
int FailWithString(std::string &errorText, std::size_t size, int number, const FormatValue &value);

// Appends a line break and `line` when the whole text then stays below `size`; otherwise the
// text stays as it is.
void AppendErrorLine(std::string &errorText, std::size_t size, std::string_view line);

}  // namespace tqv
