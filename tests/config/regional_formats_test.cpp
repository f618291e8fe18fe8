#include "config/regional_formats.h"

#include <string>
#include <vector>

#include "platform/platform_state.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

TEST(RegionalPatterns, RunsBecomeConversionsDatesAfterUpperCasingTimesWithCaseKept) {
  const std::pair<const char *, const char *> dates[] = {
      {"dd.MM.yyyy", "%d.%m.%Y"},
      {"d/M/yy", "%#d/%#m/%y"},
      {"dd/mm/yyyy", "%d/%m/%Y"},
      {"ddd dddd ddddd", "%a %A %A"},
      {"MMM MMMM mmmmm", "%b %B %B"},
      {"y yyy yyyyy", "%y %y %Y"},
      {"'day' d", "'%#dA%y' %#d"},  // quotes mean nothing here
      {"gg", "GG"},
  };
  for (const auto &[windows, strftime] : dates)
    EXPECT_EQ(TranslateDatePattern(windows), strftime) << windows;
  const std::pair<const char *, const char *> times[] = {
      {"h:mm tt", "%#I:%M p.m."},
      {"H:m:s", "%#H:%#M:%#S"},
      {"hhh.MMM.SSS", "%I.%M.%S"},
      {"Hh mM sS", "%#H%#I %M %S"},
      {"t", "p.m."},  // the whole text, not its first letter
      {"tTt 'x'", "p.m. 'x'"},
  };
  for (const auto &[windows, strftime] : times)
    EXPECT_EQ(TranslateTimePattern(windows, "p.m."), strftime) << windows;
}

class RegionalFormats : public testing::TempDirTest {
 protected:
  void WriteIntl(const std::string &lines) const {
    WriteRegionalSettings(lines);
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

TEST_F(RegionalFormats, RenderTheSameOnEveryPlatformWithTheirFallbacks) {
  const struct {
    std::string settings;
    int hour;
    void (*format)(const std::tm &, char *, std::size_t);
    const char *expected;
  } cases[] = {
      {"sShortDate=ddd, dd. MMM yyyy\r\n", 15, FormatRegionalDate, "Thu, 07. Mar 2024"},
      {"sShortDate=dddd MMMM 100%\r\n", 15, FormatRegionalDate, "Thursday March 100%"},
      {"sShortDate=\r\n", 15, FormatRegionalDate, "07/03/2024"},
      {"sShortDate=" + std::string(63, 'd') + "\r\n", 15, FormatRegionalDate, "07/03/2024"},  // too long
      {"sTimeFormat=h:mm tt\r\ns2359=pm.\r\n", 15, FormatRegionalTime, "3:05 pm."},
      {"sTimeFormat=hh:mm t\r\ns1159=vorm.\r\ns2359=nachm.\r\n", 0, FormatRegionalTime, "12:05 vorm."},
      {"sTimeFormat=H:m:s tt\r\ns1159=\r\n", 9, FormatRegionalTime, "9:5:9 "},  // an empty text is kept
      {"", 15, FormatRegionalTime, "3:05:09 PM"},
  };
  for (const auto &c : cases) {
    WriteIntl(c.settings);
    time_.tm_hour = c.hour;
    EXPECT_EQ(Format(c.format), c.expected) << c.settings;
  }
}

TEST_F(RegionalFormats, OddPatternsNeverWriteBeyondTheBuffer) {
  std::tm odd = time_;  // fields from outside may be out of range
  odd.tm_mon = 12, odd.tm_wday = -1, odd.tm_year = 2147483647;
  WriteIntl("sShortDate=%q%%%#d 'd'\"M\" gg\r\nsTimeFormat=t.t.t.t.t\r\ns2359=" + std::string(62, 'P'));
  for (auto format : {FormatRegionalDate, FormatRegionalTime}) {
    for (std::size_t size : {0, 9}) {
      std::vector<char> buffer(size + 8, 'Z');
      format(odd, buffer.data(), size);
      EXPECT_EQ(std::string(buffer.data() + size, 8), "ZZZZZZZZ") << size;
    }
  }
  EXPECT_EQ(Format(FormatRegionalTime), "") << "314 characters do not fit in 255 bytes";
  WriteIntl("sShortDate=dddd");
  EXPECT_EQ(Format(FormatRegionalDate, 9), "Thursday");
  EXPECT_EQ(Format(FormatRegionalDate, 8), "");
}

}  // namespace
}  // namespace tqv
