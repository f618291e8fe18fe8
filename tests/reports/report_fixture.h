// An installed library with a string file of short known texts, the clock stopped at
// 5 March 2003 14:05:09 and the time zone set to UTC, so report bodies and log lines can be
// written out in full. Messages() reads back what went to the gateway-in directory.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/entry_points.h"
#include "platform/clock.h"
#include "support/installation.h"
#include "support/platform_backend.h"

namespace tqv::testing {

inline constexpr std::string_view kReportStrings =
    "[English]\r\nT422=Number blocked\r\nT620=Fax Report\r\nT621=Status\r\nT622=Result\r\nT623=Speed\r\n"
    "T624=Retries\r\nT625=Duration\r\nT626=Pages\r\nT627=Res\r\nT628=Call length\r\nT629=Pages received\r\n"
    "T630=Remote station identifier\r\nT631=%d of %d\r\nT632=Date\r\nT633=Fax number\r\nT640=S0\r\n"
    "T642=Delivered\r\nT643=S3\r\nT644=Received\r\nT646=Refused\r\nT647=Standard\r\nT648=Fine\r\n"
    "T650=Voicemail\r\nT651=Message\r\nT652=Length\r\nT653=Size\r\nT654=Box\r\nT655=Digits\r\n"
    "T670=Covers:\r\nT671=Default cover:\r\nT672=Templates:\r\nT673=Default template:\r\n"
    "T674=Attachments:\r\nT675=Resolution:\r\nT676=Header:\r\nT900=\"OK: \"\r\nT901=\"FAILED: \"\r\n"
    "T902=to\r\nT1000=(missing)\r\n";

// The text with every LF written as CR LF, so expected bodies can be raw string literals.
inline std::string Crlf(std::string_view text) {
  std::string result;
  for (char c : text)
    c == '\n' ? result += "\r\n" : result += c;
  return result;
}

class ReportTest : public InstallationTest {
 protected:
  static constexpr std::int64_t kReportNow = 1046873109;

  void SetUp() override {
    InstallationTest::SetUp();
    if (const char *zone = std::getenv("TZ")) savedZone_ = zone;
    tqv::testing::SetEnvironment("TZ", "UTC0");
    tzset();
    WriteFile(ProductDir() + "/tqstring.ini", kReportStrings);
    ASSERT_EQ(host::Initialise(0, ""), 0);
    platform::SetCurrentTimeSource([] { return kReportNow; });
  }
  void TearDown() override {
    savedZone_ ? tqv::testing::SetEnvironment("TZ", savedZone_->c_str())
               : tqv::testing::UnsetEnvironment("TZ");
    tzset();
    InstallationTest::TearDown();
  }

  // The message files of the gateway-in directory in the order they were numbered.
  std::vector<std::string> Messages() const {
    std::vector<std::string> paths;
    for (const auto &entry : std::filesystem::directory_iterator(GatewayIn()))
      paths.push_back(entry.path().string());
    std::sort(paths.begin(), paths.end(), [](const std::string &a, const std::string &b) {
      return a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    std::vector<std::string> messages;
    for (const std::string &path : paths)
      messages.push_back(ReadFile(path));
    return messages;
  }

  // The value of the first header line that starts with the keyword.
  static std::string HeaderOf(const std::string &message, const std::string &keyword) {
    const std::size_t line = message.find("\r\n" + keyword);
    if (line == std::string::npos) return "(none)";
    const std::size_t value = line + 2 + keyword.size();
    return message.substr(value, message.find("\r\n", value) - value);
  }

 private:
  std::optional<std::string> savedZone_;
};

}  // namespace tqv::testing
