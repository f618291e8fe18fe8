// Dates and times of the send and receive logs, in the short-date picture and the time settings
// of section [intl] of the Windows profile. These are not the report formats: the logs keep
// their own simpler reading of the picture, and a picture they cannot read gives no date.
#pragma once

#include <cstddef>
#include <ctime>
#include <optional>
#include <string>

namespace tqv {

// A log date or time keeps at most this many characters.
inline constexpr std::size_t kLogDateTimeChars = 19;

// The date by the sShortDate picture: d, dd, M, MM, yy and yyyy with the sDate separator ("/"
// when empty). nullopt for a missing or empty picture, or one with any other character.
std::optional<std::string> FormatLogDate(const std::tm &time);

// The time as hour, minutes and seconds with the sTime separator (":" when empty); on the
// 12-hour clock of iTime 0 followed by a space and s1159 or s2359.
std::string FormatLogTime(const std::tm &time);

}  // namespace tqv
