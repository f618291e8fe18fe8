// A small strftime of our own: glibc spells "no leading zero" differently from the Microsoft
// runtime and follows the process locale for names, and reports must read the same everywhere.
#include "config/strftime_renderer.h"

#include <span>
#include <string>

namespace tqv {

namespace {

constexpr std::string_view kDayNames[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                          "Thursday", "Friday", "Saturday"};
constexpr std::string_view kMonthNames[] = {"January",   "February", "March",    "April",
                                            "May",       "June",     "July",     "August",
                                            "September", "October",  "November", "December"};
// Abbreviations are the first three letters in English.
constexpr std::size_t kAbbreviationLength = 3;

// A broken-down time from elsewhere may hold anything; an index outside the table gives "?".
std::string_view NameOf(std::span<const std::string_view> names, int index, bool abbreviated) {
  if (index < 0 || static_cast<std::size_t>(index) >= names.size()) return "?";
  const std::string_view name = names[static_cast<std::size_t>(index)];
  return abbreviated ? name.substr(0, kAbbreviationLength) : name;
}

void AppendNumber(std::string &out, long long value, bool twoDigits) {
  if (twoDigits && value >= 0 && value < 10) out += '0';
  out += std::to_string(value);
}

int FloorMod(long long value, int divisor) {
  return static_cast<int>(((value % divisor) + divisor) % divisor);
}

// Appends the conversion `letter`; false when it is not one this renderer knows.
bool AppendConversion(std::string &out, char letter, bool noLeadingZero, const std::tm &time) {
  const bool twoDigits = !noLeadingZero;
  // Widened first, so a tm_year near INT_MAX cannot overflow.
  const long long year = static_cast<long long>(time.tm_year) + 1900;
  switch (letter) {
    case 'd':
      AppendNumber(out, time.tm_mday, twoDigits);
      return true;
    case 'm':
      AppendNumber(out, static_cast<long long>(time.tm_mon) + 1, twoDigits);
      return true;
    case 'y':
      AppendNumber(out, FloorMod(year, 100), twoDigits);
      return true;
    case 'Y':
      AppendNumber(out, year, false);
      return true;
    case 'H':
      AppendNumber(out, time.tm_hour, twoDigits);
      return true;
    case 'I': {
      const int hour = FloorMod(time.tm_hour, 12);
      AppendNumber(out, hour == 0 ? 12 : hour, twoDigits);
      return true;
    }
    case 'M':
      AppendNumber(out, time.tm_min, twoDigits);
      return true;
    case 'S':
      AppendNumber(out, time.tm_sec, twoDigits);
      return true;
    case 'a':
      out += NameOf(kDayNames, time.tm_wday, true);
      return true;
    case 'A':
      out += NameOf(kDayNames, time.tm_wday, false);
      return true;
    case 'b':
      out += NameOf(kMonthNames, time.tm_mon, true);
      return true;
    case 'B':
      out += NameOf(kMonthNames, time.tm_mon, false);
      return true;
    default:
      return false;
  }
}

}  // namespace

std::string RenderStrftimePattern(std::string_view pattern, const std::tm &time) {
  std::string out;
  std::size_t at = 0;
  while (at < pattern.size()) {
    if (pattern[at] != '%') {
      out += pattern[at++];
      continue;
    }
    std::size_t letterAt = at + 1;
    const bool noLeadingZero = letterAt < pattern.size() && pattern[letterAt] == '#';
    if (noLeadingZero) ++letterAt;
    if (letterAt >= pattern.size()) {
      out.append(pattern.substr(at));
      break;
    }
    const char letter = pattern[letterAt];
    if (letter == '%') {
      out += '%';
    } else if (!AppendConversion(out, letter, noLeadingZero, time)) {
      out.append(pattern.substr(at, letterAt + 1 - at));
    }
    at = letterAt + 1;
  }
  return out;
}

}  // namespace tqv
