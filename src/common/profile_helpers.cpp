// Numbers in profile files, read through the text functions so that negative and large values
// survive (the integer profile reader would lose them). Failures read as the default.
#include "common/profile_helpers.h"

#include <cstdio>
#include <limits>
#include <string>

#include "common/number_text.h"
#include "platform/profile.h"

namespace tqv {

namespace {

// The value buffer holds 511 bytes: at most 510 characters of a value are read.
constexpr std::size_t kValueBuffer = 511;

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
