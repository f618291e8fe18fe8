// Placeholders are found in one left-to-right pass over the original text, so a value that itself
// holds "<...>" is never expanded.
#include "faxd/cover_page.h"

namespace tqv::faxd {

std::string FillPlaceholders(std::string_view text, const CoverFields &fields) {
  std::string filled;
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t open = text.find('<', at);
    if (open == std::string_view::npos) break;
    const std::size_t close = text.find('>', open + 1);
    if (close == std::string_view::npos) break;
    filled.append(text.substr(at, open - at));
    const auto field = fields.find(text.substr(open + 1, close - open - 1));
    if (field != fields.end()) {
      filled += field->second;
      at = close + 1;
    } else {
      // Not ours: keep the '<' and look again from the next character, which may open one.
      filled += '<';
      at = open + 1;
    }
  }
  filled.append(text.substr(at));
  return filled;
}

std::string OnTemplate(std::string_view templateText, std::string_view message) {
  if (templateText.empty()) return std::string(message);
  const std::size_t at = templateText.find("<MESSAGE>");
  if (at != std::string_view::npos)
    return std::string(templateText.substr(0, at)) + std::string(message) +
           std::string(templateText.substr(at + 9));
  std::string text(templateText);
  if (!text.empty() && text.back() != '\n') text += '\n';
  return text + "\n" + std::string(message);
}

}  // namespace tqv::faxd
