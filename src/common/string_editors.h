// In-place editors of single-byte texts, for option lines and settings values. They cannot fail.
#pragma once

#include <cstddef>
#include <string>

namespace tqv {

// The most characters RemoveBlanks keeps.
inline constexpr std::size_t kMaxBlankFreeText = 1024;

// Removes every space, tab and line feed (carriage returns stay); keeps at most
// kMaxBlankFreeText characters of what remains.
std::string &RemoveBlanks(std::string &text);

// Removes trailing carriage returns, line feeds, spaces and tabs.
std::string &TrimRight(std::string &text);

// Removes the spaces and tabs directly before and after every occurrence of `separator`:
// "A = 1 , B" squeezed around '=' and then ',' reads "A=1,B".
std::string &SqueezeAround(std::string &text, char separator);

}  // namespace tqv
