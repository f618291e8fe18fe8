#include "config/regional_formats.h"

#include <cstring>
#include <string>
#include <vector>

#include "platform/platform_state.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

struct Case {
  std::string input;
  const char *expected;
};

TEST(RegionalDatePattern, RunsOfDMYBecomeConversionsAfterUpperCasing) {
  const Case cases[] = {
      {"dd.MM.yyyy", "%d.%m.%Y"},
      {"d/M/yy", "%#d/%#m/%y"},
      {"yyyy-MM-dd", "%Y-%m-%d"},
      {"dd/mm/yyyy", "%d/%m/%Y"},
      {"ddd dddd ddddd", "%a %A %A"},
      {"MMM MMMM mmmmm", "%b %B %B"},
      {"y yyy yyyyy", "%y %y %Y"},
      {"dM", "%#d%#m"},
      {"'day' d", "'%#dA%y' %#d"},  // quotes mean nothing here
      {"gg", "GG"},
      {"", ""},
  };
  for (const auto &[windows, strftime] : cases)
    EXPECT_EQ(TranslateDatePattern(windows), strftime) << windows;
}

TEST(RegionalTimePattern, RunsBecomeConversionsWithCaseKept) {
  const Case cases[] = {
      {"HH:mm:ss", "%H:%M:%S"},     {"h:mm tt", "%#I:%M p.m."},
      {"H:m:s", "%#H:%#M:%#S"},     {"hhh.MMM.SSS", "%I.%M.%S"},
      {"Hh mM sS", "%#H%#I %M %S"}, {"t", "p.m."},  // the whole text, not its first letter
      {"tTt 'x'", "p.m. 'x'"},      {"", ""},
  };
  for (const auto &[windows, strftime] : cases)
    EXPECT_EQ(TranslateTimePattern(windows, "p.m."), strftime) << windows;
}

class RegionalFormats : public testing::TempDirTest {
 protected:
  void WriteIntl(const std::string &lines) const {
    WriteFile(WinDir() + "/WIN.INI", "[intl]\r\n" + lines);
    // Rewrites within one test may keep size and timestamp; drop the parsed copy.
    platform::ResetPlatformStateForTesting();
  }
  std::string Format(void (*format)(const std::tm &, char *, std::size_t), std::size_t size = 255) const {
    std::vector<char> buffer(size + 1, '\0');
    format(time_, buffer.data(), size);
    return buffer.data();
  }

  // Thursday, 7 March 2024, 15:05:09.
  std::tm time_ = [] {
    std::tm time{};
    time.tm_year = 124, time.tm_mon = 2, time.tm_mday = 7, time.tm_wday = 4;
    time.tm_hour = 15, time.tm_min = 5, time.tm_sec = 9;
    return time;
  }();
};

TEST_F(RegionalFormats, DateRendersTheSameOnEveryPlatform) {
  const Case cases[] = {
      {"sShortDate=d/M/yy\r\n", "7/3/24"},
      {"sShortDate=ddd, dd. MMM yyyy\r\n", "Thu, 07. Mar 2024"},
      {"sShortDate=dddd MMMM 100%\r\n", "Thursday March 100%"},
      {"", "07/03/2024"},
      {"sShortDate=\r\n", "07/03/2024"},
      {"sShortDate=" + std::string(63, 'd') + "\r\n", "07/03/2024"},  // too long to read
  };
  for (const auto &[settings, expected] : cases) {
    WriteIntl(settings);
    EXPECT_EQ(Format(FormatRegionalDate), expected) << settings;
  }
}

TEST_F(RegionalFormats, TimeUsesThePatternAndTheDayPeriodText) {
  const struct {
    std::string settings;
    int hour;
    const char *expected;
  } cases[] = {
      {"sTimeFormat=HH:mm:ss\r\n", 15, "15:05:09"},
      {"sTimeFormat=h:mm tt\r\ns2359=pm.\r\n", 15, "3:05 pm."},
      {"sTimeFormat=hh:mm t\r\ns1159=vorm.\r\ns2359=nachm.\r\n", 0, "12:05 vorm."},
      {"sTimeFormat=H:m:s tt\r\ns1159=\r\n", 9, "9:5:9 "},  // an empty text is kept
      {"", 15, "3:05:09 PM"},
  };
  for (const auto &c : cases) {
    WriteIntl(c.settings);
    time_.tm_hour = c.hour;
    EXPECT_EQ(Format(FormatRegionalTime), c.expected) << c.settings;
  }
}

TEST_F(RegionalFormats, OddPatternsNeverWriteBeyondTheBuffer) {
  const std::string patterns[] = {
      "", "'d'\"M\"", "gg qq", "%", "%#", "%q%%%#d", "dddd MMMM", "t.t.t.t.t", std::string(62, 'd')};
  constexpr std::size_t kGuard = 8;
  std::tm odd = time_;  // fields from outside may be out of range
  odd.tm_mon = 12;
  odd.tm_wday = -1;
  odd.tm_year = 2147483647;
  for (const std::tm &when : {time_, odd}) {
    for (const std::string &pattern : patterns) {
      WriteIntl("sShortDate=" + pattern + "\r\nsTimeFormat=" + pattern + "\r\ns2359=" + std::string(62, 'P'));
      for (auto format : {FormatRegionalDate, FormatRegionalTime}) {
        char full[256];
        format(when, full, sizeof full);
        for (std::size_t size : {0, 1, 5, 9, 255}) {
          std::vector<char> buffer(size + kGuard, 'Z');
          format(when, buffer.data(), size);
          EXPECT_EQ(std::string(buffer.data() + size, kGuard), std::string(kGuard, 'Z')) << pattern << size;
          const std::string text(buffer.data(), strnlen(buffer.data(), size));
          // The whole text with its NUL, or nothing: strftime never leaves a cut text.
          if (size > 0) {
            EXPECT_TRUE(text.size() < size && (text.empty() || text == full)) << pattern << size;
          }
        }
      }
    }
  }
  time_.tm_hour = 15;
  WriteIntl("sTimeFormat=t.t.t.t.t\r\ns2359=" + std::string(62, 'P'));
  EXPECT_EQ(Format(FormatRegionalTime), "") << "314 characters do not fit in 255 bytes";
  WriteIntl("sShortDate=dddd");
  EXPECT_EQ(Format(FormatRegionalDate, 9), "Thursday");
  EXPECT_EQ(Format(FormatRegionalDate, 8), "");
}

}  // namespace
}  // namespace tqv
