// Error texts of administration requests; see admin_error_text.h.
#include "admin/admin_error_text.h"

#include "common/text_limits.h"
#include "config/message_strings.h"

namespace tqv {

int FailWithText(std::string &errorText, std::size_t size, std::string_view text) {
  errorText = text;
  CutText(errorText, CharsInBuffer(size));
  return -1;
}

int FailWithString(std::string &errorText, std::size_t size, int number) {
  errorText = LookupString(number, size);
  return -1;
}

int FailWithString(std::string &errorText, std::size_t size, int number, const FormatValue &value) {
  errorText = FormatWithValue(GetString(number), value, CharsInBuffer(size));
  return -1;
}

void AppendErrorLine(std::string &errorText, std::size_t size, std::string_view line) {
  if (errorText.size() + kErrorLineBreak.size() + line.size() >= size) return;
  errorText += kErrorLineBreak;
  errorText += line;
}

}  // namespace tqv
