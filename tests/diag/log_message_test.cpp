// The service log CORVANTA.LOG and the events beside it: one dated CR LF line per entry, begun anew
// past its cap, and a failed check that logs its place and beeps.
#include "diag/log_message.h"

#include <string>
#include <vector>

#include "diag/check_assertion.h"
#include "platform/beep_and_sleep.h"
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

// The event text is cut to what an event holds; the log line keeps the whole text.
TEST_F(LogMessageTest, CreatesTheLogAndAppendsOneDatedCrLfLinePerEntry) {
  LogMessage(nullptr, kServiceEventSource, platform::kEventError, "Cannot open %s (%d)", "X.TMP", 5);
  platform::SetCurrentTimeSource([] { return kPinnedTime + 86400 * 300 + 3600 * 5; });
  LogMessage(nullptr, kServiceEventSource, platform::kEventWarning, "ends in a newline\n");
  const std::string longText(600, 'a');
  LogMessage(nullptr, kAssertionEventSource, platform::kEventError, "%s", longText.c_str());

  EXPECT_EQ(ReadFile(LogPath()), std::string(kPinnedPrefix) +
                                     "Cannot open X.TMP (5)\r\n"
                                     "01/01/2025  14:05:02  ends in a newline\r\n\r\n"
                                     "01/01/2025  14:05:02  " +
                                     longText + "\r\n");
  EXPECT_EQ(Events(), (std::vector<std::string>{"1\tCorvanta FAX Service\tCannot open X.TMP (5)",
                                                "2\tCorvanta FAX Service\tends in a newline", "",
                                                "1\tCORVANTA\t" + std::string(kMaxEventMessage, 'a')}));
}

TEST_F(LogMessageTest, OnlyAFailedCheckLogsOneLineAndBeepsFourTimes) {
  std::vector<std::string> signals;
  platform::SetBeepAndSleepHooks([&] { signals.push_back("beep"); },
                                 [&](std::uint32_t ms) { signals.push_back("sleep " + std::to_string(ms)); });
  CheckAssertion(true, "convout.cpp", 412);
  EXPECT_FALSE(Exists(LogPath()));
  EXPECT_TRUE(Events().empty());
  EXPECT_TRUE(signals.empty());

  CheckAssertion(false, "convout%s.cpp", 412);
  EXPECT_EQ(ReadFile(LogPath()),
            std::string(kPinnedPrefix) + "Assertion failed: 'convout%s.cpp', line 412\r\n");
  EXPECT_EQ(Events(), std::vector<std::string>{"1\tCORVANTA\tAssertion failed: 'convout%s.cpp', line 412"});
  EXPECT_EQ(signals, (std::vector<std::string>{"beep", "sleep 500", "beep", "sleep 500", "beep", "sleep 500",
                                               "beep", "sleep 500"}));
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

}  // namespace
}  // namespace tqv
