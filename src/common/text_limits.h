// The length limits of the system's fixed text buffers, and the one helper that cuts a text to a
// limit. Every cut in the code goes through CutText, so no text ever outgrows its buffer.
#pragma once

#include <cstddef>
#include <string>

namespace tqv {

// A path buffer holds 260 bytes: at most 259 characters and the NUL.
inline constexpr std::size_t kMaxPath = 259;
// Names and header values: at most 254 characters.
inline constexpr std::size_t kMaxName = 254;

// Cuts `text` to at most `limit` characters; returns it.
inline std::string &CutText(std::string &text, std::size_t limit) {
  if (text.size() > limit) text.resize(limit);
  return text;
}

// The characters a buffer of `size` bytes holds before its NUL (size 0 holds none).
inline constexpr std::size_t CharsInBuffer(std::size_t size) {
  return size == 0 ? 0 : size - 1;
}

}  // namespace tqv
