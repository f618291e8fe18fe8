// Text-mode line-end translation. Pure string work; it cannot fail.
#include "platform/text_mode.h"

namespace tqv::platform {

std::string ToTextMode(std::string_view text) {
  std::string result;
  result.reserve(text.size() + text.size() / 16 + 2);
  for (char c : text) {
    if (c == '\n') result.push_back('\r');
    result.push_back(c);
  }
  return result;
}

std::string FromTextMode(std::string_view bytes) {
  std::string result;
  result.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') continue;
    result.push_back(bytes[i]);
  }
  return result;
}

}  // namespace tqv::platform
