#include "diag/check_assertion.h"

#include <vector>

#include "platform/beep_and_sleep.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

// The date-and-time prefix of a log line: "MM/DD/YYYY  hh:mm:ss  ".
constexpr std::size_t kPrefixLength = 22;

class CheckAssertionTest : public testing::TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    platform::SetBeepAndSleepHooks(
        [this] { signals_.push_back("beep"); },
        [this](std::uint32_t ms) { signals_.push_back("sleep " + std::to_string(ms)); });
  }

  std::string LogPath() const { return WinDir() + "/CORVANTA.LOG"; }
  std::vector<std::string> signals_;
};

TEST_F(CheckAssertionTest, OnlyAFailedCheckLogsOneLineAndBeepsFourTimes) {
  CheckAssertion(true, "convout.cpp", 412);
  EXPECT_FALSE(Exists(LogPath()));
  EXPECT_TRUE(Events().empty());
  EXPECT_TRUE(signals_.empty());

  CheckAssertion(false, "convout%s.cpp", 412);
  const std::string log = ReadFile(LogPath());
  ASSERT_GT(log.size(), kPrefixLength);
  EXPECT_EQ(log.substr(kPrefixLength), "Assertion failed: 'convout%s.cpp', line 412\r\n");
  EXPECT_EQ(Events(), std::vector<std::string>{"1\tCORVANTA\tAssertion failed: 'convout%s.cpp', line 412"});
  const std::vector<std::string> expected = {"beep", "sleep 500", "beep", "sleep 500",
                                             "beep", "sleep 500", "beep", "sleep 500"};
  EXPECT_EQ(signals_, expected);
}

}  // namespace
}  // namespace tqv
