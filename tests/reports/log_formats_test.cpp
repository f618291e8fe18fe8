#include "reports/log_formats.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "support/temp_dir.h"

namespace tqv {
namespace {

class LogFormats : public testing::TempDirTest {
 protected:
  void SetIntl(const std::string &lines) const { WriteRegionalSettings(lines); }
  static std::tm At(int year, int hour = 0, int minute = 0, int second = 0) {
    std::tm time{};
    time.tm_year = year - 1900;
    time.tm_mon = 2;  // March
    time.tm_mday = 5;
    time.tm_hour = hour;
    time.tm_min = minute;
    time.tm_sec = second;
    return time;
  }
};

TEST_F(LogFormats, DatePictureIsReadLetterByLetter) {
  const struct {
    const char *settings;
    int year;
    std::optional<std::string> expected;
  } cases[] = {
      {"sShortDate=dd/MM/yyyy\r\nsDate=/\r\n", 1998, "05/03/1998"},
      {"sShortDate=dd/MM/yyyy\r\nsDate=/\r\n", 2003, "05/03/2003"},
      {"sShortDate=d/M/yy\r\n", 2003, "5/3/03"},  // no sDate: "/"
      {"sShortDate=yyyy.MM.dd\r\nsDate=.\r\n", 2003, "2003.03.05"},
      {"sShortDate=ddd/yyy\r\n", 2003, "055/2003"},  // the move of four passes the end
      {"sShortDate=dd/MM/yyyy/dd/MM/yyyy\r\n", 2003, "05/03/2003/05/03/20"},
      {"sShortDate=dd.MM.yyyy\r\nsDate=/\r\n", 2003, std::nullopt},
      {"sShortDate=DD/MM/YYYY\r\n", 2003, std::nullopt},
      {"sShortDate=\r\n", 2003, std::nullopt},
      {"sDate=/\r\n", 2003, std::nullopt},
  };
  for (const auto &c : cases) {
    SetIntl(c.settings);
    EXPECT_EQ(FormatLogDate(At(c.year)), c.expected) << c.settings;
  }
}

TEST_F(LogFormats, TimeFollowsClockLeadingZeroAndMarkerSettings) {
  const struct {
    const char *settings;
    std::tm time;
    const char *expected;
  } cases[] = {
      {"iTime=0\r\niTLZero=0\r\n", At(2003, 14, 5, 9), "2:05:09 PM"},
      {"iTime=0\r\niTLZero=0\r\n", At(2003, 0, 30, 0), "0:30:00 AM"},
      {"iTime=0\r\niTLZero=0\r\n", At(2003, 12, 0, 0), "12:00:00 PM"},
      {"iTime=1\r\niTLZero=1\r\n", At(2003, 7, 8, 9), "07:08:09"},
      {"iTime=0\r\nsTime=.\r\ns2359=a very long marker\r\n", At(2003, 19, 8, 9), "07.08.09 a very lo"},
  };
  for (const auto &c : cases) {
    SetIntl(c.settings);
    EXPECT_EQ(FormatLogTime(c.time), c.expected) << c.settings;
  }
}

}  // namespace
}  // namespace tqv
