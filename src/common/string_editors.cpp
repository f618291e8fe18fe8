// Whitespace editors for option lines and settings values. They only ever shorten the caller's
// text in place, so they need no memory and cannot fail.
#include "common/string_editors.h"

#include "common/text_limits.h"

namespace tqv {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

}  // namespace

std::string &RemoveBlanks(std::string &text) {
  std::erase_if(text, [](char c) { return c == ' ' || c == '\t' || c == '\n'; });
  return CutText(text, kMaxBlankFreeText);
}

std::string &TrimRight(std::string &text) {
  const std::size_t end = text.find_last_not_of(" \t\r\n");
  text.resize(end == std::string::npos ? 0 : end + 1);
  return text;
}

std::string &SqueezeAround(std::string &text, char separator) {
  // Compacts in place: the write position never passes the read position.
  std::size_t write = 0;
  std::size_t read = 0;
  while (read < text.size()) {
    if (!IsBlank(text[read])) {
      text[write++] = text[read++];
      continue;
    }
    // A whole run of blanks goes when the separator stands on either side of it.
    std::size_t runEnd = read;
    while (runEnd < text.size() && IsBlank(text[runEnd]))
      ++runEnd;
    const bool afterSeparator = write > 0 && text[write - 1] == separator;
    const bool beforeSeparator = runEnd < text.size() && text[runEnd] == separator;
    if (!afterSeparator && !beforeSeparator) {
      while (read < runEnd)
        text[write++] = text[read++];
    }
    read = runEnd;
  }
  text.resize(write);
  return text;
}

}  // namespace tqv
