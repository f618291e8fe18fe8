#include "diag/log_message.h"

#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/event_log.h"
#include "platform/file.h"
#include "support/platform_backend.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

// 03/07/2024 09:05:02 UTC.
constexpr std::int64_t kPinnedTime = 1709802302;
constexpr const char *kPinnedPrefix = "03/07/2024  09:05:02  ";

class LogMessageTest : public testing::TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    platform::SetCurrentTimeSource([] { return kPinnedTime; });
  }

  std::string LogPath() const { return WinDir() + "/CORVANTA.LOG"; }

 private:
  testing::UtcTimeZone utc_;
};

TEST_F(LogMessageTest, CreatesTheLogAndAppendsOneDatedCrLfLinePerEntry) {
  LogMessage(nullptr, kServiceEventSource, platform::kEventError, "Cannot open %s (%d)", "X.TMP", 5);
  platform::SetCurrentTimeSource([] { return kPinnedTime + 86400 * 300 + 3600 * 5; });
  LogMessage(nullptr, kServiceEventSource, platform::kEventWarning, "ends in a newline\n");

  EXPECT_EQ(ReadFile(LogPath()), std::string(kPinnedPrefix) +
                                     "Cannot open X.TMP (5)\r\n"
                                     "01/01/2025  14:05:02  ends in a newline\r\n\r\n");
  EXPECT_EQ(Events(), (std::vector<std::string>{"1\tCorvanta FAX Service\tCannot open X.TMP (5)",
                                                "2\tCorvanta FAX Service\tends in a newline", ""}));
}

TEST_F(LogMessageTest, LogAtTheCapIsAppendedToAndOneByteMoreIsBegunAnew) {
  const std::string entry = std::string(kPinnedPrefix) + "next\r\n";

  const std::string atCap(kLogFileCap, 'x');
  WriteFile(LogPath(), atCap);
  LogMessage(nullptr, kServiceEventSource, platform::kEventInformation, "next");
  EXPECT_EQ(ReadFile(LogPath()), atCap + entry);

  WriteFile(LogPath(), atCap + "x");
  LogMessage(nullptr, kServiceEventSource, platform::kEventInformation, "next");
  EXPECT_EQ(ReadFile(LogPath()), entry);
}

TEST_F(LogMessageTest, EventsDoNotDependOnTheLogFile) {
  const std::string overCap(kLogFileCap + 1, 'x');
  WriteFile(LogPath(), overCap);
  {
    const auto held = platform::File::OpenExclusive(LogPath());
    ASSERT_TRUE(held.has_value());
    LogMessage(nullptr, kServiceEventSource, platform::kEventError, "while held");
  }
  EXPECT_EQ(ReadFile(LogPath()).substr(0, overCap.size()), overCap) << "a held log is never emptied";
  EXPECT_EQ(Events(), std::vector<std::string>{"1\tCorvanta FAX Service\twhile held"});

  TQV_SKIP_ON_WIN32("the system's Windows directory cannot be moved");
  tqv::testing::SetEnvironment("TQVSPOOL_WINDIR", PathOf("nowhere").c_str());
  LogMessage(nullptr, kServiceEventSource, platform::kEventError, "no directory");
  EXPECT_FALSE(Exists(PathOf("nowhere")));
  EXPECT_EQ(Events(), (std::vector<std::string>{"1\tCorvanta FAX Service\twhile held",
                                                "1\tCorvanta FAX Service\tno directory"}));
}

TEST_F(LogMessageTest, EventMessageIsCutButTheLogLineIsNot) {
  const std::string longText(600, 'a');
  LogMessage(nullptr, kAssertionEventSource, platform::kEventError, "%s", longText.c_str());
  EXPECT_EQ(ReadFile(LogPath()), std::string(kPinnedPrefix) + longText + "\r\n");
  EXPECT_EQ(Events(), std::vector<std::string>{"1\tCORVANTA\t" + std::string(kMaxEventMessage, 'a')});
}

}  // namespace
}  // namespace tqv
