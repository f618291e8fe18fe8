// Formatting of localised texts with one value; see string_formatting.h. Each conversion is
// handed to snprintf on its own, with the one argument it was checked to take.
#include "config/string_formatting.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "common/text_limits.h"

namespace tqv {

std::string FormatWithValue(std::string_view format, const FormatValue &value, std::size_t limit) {
  std::string text;
  // One conversion never gives more than the whole result may hold.
  std::vector<char> piece(limit + 1);
  bool valueUsed = false;
  for (std::size_t i = 0; i < format.size() && text.size() <= limit; ++i) {
    if (format[i] != '%') {
      text += format[i];
      continue;
    }
    const std::size_t fieldEnd = std::min(format.find_first_not_of("-+ #0123456789.", i + 1), format.size());
    const std::size_t conversionAt = format.find_first_not_of("hlLqjzt", fieldEnd);
    if (conversionAt == std::string_view::npos) {
      text += format.substr(i);
      break;
    }
    const char conversion = format[conversionAt];
    const std::string field(format.substr(i, fieldEnd - i));
    piece[0] = '\0';
    if (conversion == '%') {
      text += '%';
    } else if (!valueUsed && (conversion == 'd' || conversion == 'i') &&
               std::holds_alternative<std::int64_t>(value)) {
      std::snprintf(piece.data(), piece.size(), (field + "lld").c_str(),
                    static_cast<long long>(std::get<std::int64_t>(value)));
      text += piece.data();
      valueUsed = true;
    } else if (!valueUsed && conversion == 's' && std::holds_alternative<std::string_view>(value)) {
      const std::string argument(std::get<std::string_view>(value));
      std::snprintf(piece.data(), piece.size(), (field + "s").c_str(), argument.c_str());
      text += piece.data();
      valueUsed = true;
    } else {
      text += format.substr(i, conversionAt - i + 1);
    }
    i = conversionAt;
  }
  return CutText(text, limit);
}

}  // namespace tqv
