// Regional date and time formats. Settings are read at every call, so a change by the user shows
// in the next report; a missing, empty or over-long pattern falls back to the default.
#include "config/regional_formats.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

#include "common/text_limits.h"
#include "config/strftime_renderer.h"
#include "platform/regional_settings.h"

namespace tqv {

namespace {

// Patterns are built in a text that starts with this room and grows as needed.
constexpr std::size_t kInitialPatternCapacity = 64;

constexpr int kNoon = 12;

// The conversions for a run of one, two, three and four or more letters.
struct RunConversions {
  std::string_view byLength[4];
  std::string_view For(std::size_t runLength) const {
    return byLength[std::min<std::size_t>(runLength, 4) - 1];
  }
};

constexpr RunConversions kDayRun{{"%#d", "%d", "%a", "%A"}};
constexpr RunConversions kMonthRun{{"%#m", "%m", "%b", "%B"}};
constexpr RunConversions kYearRun{{"%y", "%y", "%y", "%Y"}};

constexpr RunConversions kHour24Run{{"%#H", "%H", "%H", "%H"}};
constexpr RunConversions kHour12Run{{"%#I", "%I", "%I", "%I"}};
constexpr RunConversions kMinuteRun{{"%#M", "%M", "%M", "%M"}};
constexpr RunConversions kSecondRun{{"%#S", "%S", "%S", "%S"}};

char ToUpperAscii(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// Letters that form one run in a time pattern: H and h stay apart, m, s and t runs mix cases.
char TimeRunKind(char c) {
  switch (c) {
    case 'M':
      return 'm';
    case 'S':
      return 's';
    case 'T':
      return 't';
    default:
      return c;
  }
}

template <typename Kind>
std::size_t RunLength(std::string_view text, std::size_t at, Kind kind) {
  std::size_t end = at + 1;
  while (end < text.size() && kind(text[end]) == kind(text[at]))
    ++end;
  return end - at;
}

std::string SettingOr(std::string_view name, std::string_view fallback) {
  std::optional<std::string> value = platform::ReadRegionalSetting(name);
  if (!value || value->empty()) return std::string(fallback);
  return std::move(*value);
}

// strftime's contract: the whole text and its NUL, or nothing when they do not fit.
void CopyToBuffer(const std::string &text, char *buffer, std::size_t size) {
  if (buffer == nullptr || size == 0) return;
  if (text.size() > CharsInBuffer(size)) {
    buffer[0] = '\0';
    return;
  }
  std::memcpy(buffer, text.data(), text.size());
  buffer[text.size()] = '\0';
}

}  // namespace

std::string TranslateDatePattern(std::string_view pattern) {
  std::string upper(pattern);
  for (char &c : upper)
    c = ToUpperAscii(c);
  std::string out;
  out.reserve(kInitialPatternCapacity);
  const auto same = [](char c) { return c; };
  for (std::size_t at = 0; at < upper.size();) {
    const std::size_t run = RunLength(upper, at, same);
    switch (upper[at]) {
      case 'D':
        out += kDayRun.For(run);
        break;
      case 'M':
        out += kMonthRun.For(run);
        break;
      case 'Y':
        out += kYearRun.For(run);
        break;
      default:
        out.append(upper, at, run);
    }
    at += run;
  }
  return out;
}

std::string TranslateTimePattern(std::string_view pattern, std::string_view dayPeriodText) {
  std::string out;
  out.reserve(kInitialPatternCapacity);
  for (std::size_t at = 0; at < pattern.size();) {
    const std::size_t run = RunLength(pattern, at, TimeRunKind);
    switch (TimeRunKind(pattern[at])) {
      case 'H':
        out += kHour24Run.For(run);
        break;
      case 'h':
        out += kHour12Run.For(run);
        break;
      case 'm':
        out += kMinuteRun.For(run);
        break;
      case 's':
        out += kSecondRun.For(run);
        break;
      case 't':
        out += dayPeriodText;
        break;
      default:
        out.append(pattern.substr(at, run));
    }
    at += run;
  }
  return out;
}

void FormatRegionalDate(const std::tm &time, char *buffer, std::size_t size) {
  const std::string pattern = TranslateDatePattern(SettingOr("sShortDate", kDefaultDatePattern));
  CopyToBuffer(RenderStrftimePattern(pattern, time), buffer, size);
}

void FormatRegionalTime(const std::tm &time, char *buffer, std::size_t size) {
  const std::string windowsPattern = SettingOr("sTimeFormat", kDefaultTimePattern);
  const bool morning = time.tm_hour < kNoon;
  // Unlike the patterns, an empty AM/PM text is the user's choice and is kept.
  const std::string dayPeriodText =
      platform::ReadRegionalSetting(morning ? "s1159" : "s2359")
          .value_or(std::string(morning ? kDefaultMorningText : kDefaultAfternoonText));
  CopyToBuffer(RenderStrftimePattern(TranslateTimePattern(windowsPattern, dayPeriodText), time), buffer,
               size);
}

}  // namespace tqv
