// Lines of the texts a request brings, the form and the defaults block, read as the C runtime's
// line reader reads a file in text mode. A file that cannot be opened or read is no text.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tqv {

// Lines are read with buffers of this size: at most 510 characters, line feed included.
inline constexpr std::size_t kFormLineSize = 511;

// A text file read as a C line reader reads it in text mode: CR LF reads as LF, and each read
// gives one piece, up to and with the line feed, of at most size-1 characters.
class TextLines {
 public:
  // nullopt when the file cannot be opened or read.
  static std::optional<TextLines> Open(std::string_view path);

  // The next piece, its text ending at a NUL as a C string would; nullopt at the end.
  std::optional<std::string> Read(std::size_t size);

 private:
  explicit TextLines(std::string text) : text_(std::move(text)) {}

  std::string text_;
  std::size_t next_ = 0;
};

// The next line that is neither blank nor a ";;" comment, its trailing blanks and line end
// removed; nullopt at the end of the file.
std::optional<std::string> NextFormLine(TextLines &lines, std::size_t size);

// True for a line of nothing but carriage returns, line feeds, spaces and tabs (or nothing).
bool IsBlankLine(std::string_view line);

}  // namespace tqv
