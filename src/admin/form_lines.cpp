// Form and defaults lines; see form_lines.h. The file is read whole and cut as a line reader with
// a fixed buffer would cut it.
#include "admin/form_lines.h"

#include <algorithm>

#include "common/string_editors.h"
#include "common/text_limits.h"
#include "platform/file.h"
#include "platform/text_mode.h"

namespace tqv {

namespace {

constexpr std::string_view kCommentMark = ";;";

}  // namespace

std::optional<TextLines> TextLines::Open(std::string_view path) {
  std::optional<platform::File> file = platform::File::OpenShared(path);
  if (!file) return std::nullopt;
  std::optional<std::string> bytes = file->ReadAll();
  if (!bytes) return std::nullopt;
  return TextLines(platform::FromTextMode(*bytes));
}

std::optional<std::string> TextLines::Read(std::size_t size) {
  const std::size_t room = CharsInBuffer(size);
  if (next_ >= text_.size() || room == 0) return std::nullopt;
  std::size_t end = std::min(text_.find('\n', next_), text_.size() - 1) + 1;
  end = std::min(end, next_ + room);
  std::string piece = text_.substr(next_, end - next_);
  next_ = end;
  piece.resize(std::min(piece.find('\0'), piece.size()));
  return piece;
}

std::optional<std::string> NextFormLine(TextLines &lines, std::size_t size) {
  while (std::optional<std::string> line = lines.Read(size)) {
    TrimRight(*line);
    if (!IsBlankLine(*line) && !line->starts_with(kCommentMark)) return line;
  }
  return std::nullopt;
}

bool IsBlankLine(std::string_view line) {
  return line.find_first_not_of("\r\n \t") == std::string_view::npos;
}

}  // namespace tqv
