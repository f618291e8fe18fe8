// Numbers in profile files, read through the text functions so that negative and large values
// survive (the integer profile reader would lose them). Failures read as the default.
#include "common/profile_helpers.h"

#include <cstdio>
#include <limits>
#include <string>

#include "platform/profile.h"

namespace tqv {

namespace {

// The value buffer holds 511 bytes: at most 510 characters of a value are read.
constexpr std::size_t kValueBuffer = 511;

// atol without its undefined behaviour on overflow: out-of-range values are held at the ends.
std::int32_t ParseLong(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r')))
    ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  // One beyond the largest magnitude is enough to know that the number is out of range.
  constexpr std::int64_t kMagnitudeLimit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
  std::int64_t magnitude = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    magnitude = magnitude * 10 + (text[i] - '0');
    if (magnitude > kMagnitudeLimit) magnitude = kMagnitudeLimit;
  }
  const std::int64_t value = negative ? -magnitude : magnitude;
  if (value > std::numeric_limits<std::int32_t>::max()) return std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(value);
}

}  // namespace

std::int32_t GetProfileLong(std::string_view section, std::string_view key, std::int32_t defaultValue,
                            std::string_view file) {
  char defaultText[16];
  std::snprintf(defaultText, sizeof defaultText, "%ld", static_cast<long>(defaultValue));
  const std::string value = platform::ProfileReadString(section, key, defaultText, kValueBuffer, file);
  return ParseLong(value);
}

bool WriteProfileInt(std::string_view section, std::string_view key, std::int32_t value,
                     std::string_view file) {
  char text[16];
  std::snprintf(text, sizeof text, "%d", static_cast<int>(value));
  return platform::ProfileWriteString(section, key, std::string_view(text), file);
}

}  // namespace tqv
