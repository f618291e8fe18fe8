// Log dates and times from section [intl] of the Windows profile, read at every call so a change
// of the settings shows in the next line.
#include "reports/log_formats.h"

#include <cstdint>
#include <cstdio>
#include <string_view>

#include "common/text_limits.h"
#include "platform/profile.h"

namespace tqv {

namespace {

constexpr std::string_view kWindowsProfile = "WIN.INI";
constexpr std::string_view kIntlSection = "intl";
constexpr char kDefaultDateSeparator = '/';
constexpr char kDefaultTimeSeparator = ':';
// Buffers the settings are read into.
constexpr std::size_t kSeparatorSize = 2;
constexpr std::size_t kPictureSize = 80;
constexpr std::size_t kDayPeriodSize = 10;
constexpr std::string_view kDefaultMorning = "AM";
constexpr std::string_view kDefaultAfternoon = "PM";
constexpr int kNoon = 12;

std::string IntlString(std::string_view key, std::string_view defaultValue, std::size_t size) {
  return platform::ProfileReadString(kIntlSection, key, defaultValue, size, kWindowsProfile);
}

char Separator(std::string_view key, char defaultSeparator) {
  const std::string value = IntlString(key, "", kSeparatorSize);
  return value.empty() ? defaultSeparator : value.front();
}

std::string Number(const char *format, int value) {
  char text[16];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

}  // namespace

std::optional<std::string> FormatLogDate(const std::tm &time) {
  const char separator = Separator("sDate", kDefaultDateSeparator);
  const std::string picture = IntlString("sShortDate", "", kPictureSize);
  if (picture.empty()) return std::nullopt;

  // A picture whose y's stand side by side as exactly "yy" asks for a two-digit year.
  const std::size_t firstY = picture.find('y');
  const bool shortYear = firstY != std::string::npos && picture.rfind('y') == firstY + 1;
  const int year = time.tm_year + 1900;

  std::string date;
  for (std::size_t pos = 0; pos < picture.size();) {
    const char c = picture[pos];
    const bool doubled = pos + 1 < picture.size() && picture[pos + 1] == c;
    if (c == separator) {
      date += c;
      pos += 1;
    } else if (c == 'd') {
      date += Number(doubled ? "%02d" : "%d", time.tm_mday);
      pos += doubled ? 2 : 1;
    } else if (c == 'M') {
      date += Number(doubled ? "%02d" : "%d", time.tm_mon + 1);
      pos += doubled ? 2 : 1;
    } else if (c == 'y') {
      date += shortYear ? Number("%02d", year % 100) : Number("%04d", year);
      pos += shortYear ? 2 : 4;
    } else {
      return std::nullopt;
    }
  }
  return CutText(date, kLogDateTimeChars);
}

std::string FormatLogTime(const std::tm &time) {
  const char separator = Separator("sTime", kDefaultTimeSeparator);
  const bool twelveHour = platform::ProfileReadInt(kIntlSection, "iTime", 1, kWindowsProfile) == 0;
  const bool leadingZero = platform::ProfileReadInt(kIntlSection, "iTLZero", 1, kWindowsProfile) != 0;

  // Midnight shows as 0 on the 12-hour clock too; only the afternoon hours are brought down.
  const int hour = twelveHour && time.tm_hour > kNoon ? time.tm_hour - kNoon : time.tm_hour;
  std::string text = Number(leadingZero ? "%02d" : "%d", hour);
  text += separator;
  text += Number("%02d", time.tm_min);
  text += separator;
  text += Number("%02d", time.tm_sec);
  if (twelveHour) {
    text += ' ';
    text += time.tm_hour >= kNoon ? IntlString("s2359", kDefaultAfternoon, kDayPeriodSize)
                                  : IntlString("s1159", kDefaultMorning, kDayPeriodSize);
  }
  return CutText(text, kLogDateTimeChars);
}

}  // namespace tqv
