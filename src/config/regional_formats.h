// Dates and times of day in the user's regional short-date and time formats, for reports. The
// Windows patterns are translated to strftime patterns and rendered; an unreadable setting gives
// its default, so neither function fails.
#pragma once

#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>

namespace tqv {

inline constexpr std::string_view kDefaultDatePattern = "dd/MM/yyyy";
inline constexpr std::string_view kDefaultTimePattern = "h:mm:ss tt";
inline constexpr std::string_view kDefaultMorningText = "AM";
inline constexpr std::string_view kDefaultAfternoonText = "PM";
// The buffer size report writers pass.
inline constexpr std::size_t kRegionalTextSize = 255;

// The strftime pattern of a Windows short-date pattern: upper-cased, then each run of D, M or Y
// becomes a conversion ("d" -> "%#d", "dd" -> "%d", "ddd" -> "%a", "dddd" -> "%A", likewise
// M -> m/b/B, Y..YYY -> "%y", YYYY -> "%Y"). Everything else, quoted text included, is copied.
std::string TranslateDatePattern(std::string_view pattern);

// The strftime pattern of a Windows time pattern, case kept: H, h, m/M and s/S runs become
// %H, %I, %M, %S ("%#" when the run is one letter), and any run of t/T becomes the whole
// `dayPeriodText` (the AM or PM text).
std::string TranslateTimePattern(std::string_view pattern, std::string_view dayPeriodText);

// Writes `time` in the regional short-date format into `buffer` of `size` bytes. When the text
// does not fit, the buffer holds an empty text, as strftime leaves nothing usable; never overruns.
void FormatRegionalDate(const std::tm &time, char *buffer, std::size_t size);

// The same for the time of day, with the regional AM/PM texts.
void FormatRegionalTime(const std::tm &time, char *buffer, std::size_t size);

}  // namespace tqv
