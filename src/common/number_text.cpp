// Text-to-number conversion without atol's undefined behaviour on overflow; it cannot fail.
#include "common/number_text.h"

#include <algorithm>
#include <limits>

namespace tqv {

std::int32_t ParseLong(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r')))
    ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  // One beyond the largest magnitude is enough to know that the number is out of range.
  constexpr std::int64_t kMagnitudeLimit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
  std::int64_t magnitude = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i)
    magnitude = std::min(magnitude * 10 + (text[i] - '0'), kMagnitudeLimit);
  const std::int64_t value = negative ? -magnitude : magnitude;
  return static_cast<std::int32_t>(std::min<std::int64_t>(value, std::numeric_limits<std::int32_t>::max()));
}

}  // namespace tqv
