// An installed library with a string file of short known texts, the clock stopped at
// 5 March 2003 14:05:09 and the time zone set to UTC, so report bodies and log lines can be
// written out in full.
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
    "T902=to\r\nT1000=(missing)\r\nT660=Unknown station\r\nT720=Unknown option %s\r\nT903=\"fax from \"\r\n"
    "T4400=New voicemail\r\n";

class ReportTest : public InstallationTest {
 protected:
  static constexpr std::int64_t kReportNow = 1046873109;

  void SetUp() override {
    InstallationTest::SetUp();
    WriteFile(ProductDir() + "/tqstring.ini", kReportStrings);
    ASSERT_EQ(host::Initialise(0, ""), 0);
    platform::SetCurrentTimeSource([] { return kReportNow; });
  }

  // The value of the first header line that starts with the keyword.
  static std::string HeaderOf(const std::string &message, const std::string &keyword) {
    const std::size_t line = message.find("\r\n" + keyword);
    if (line == std::string::npos) return "(none)";
    const std::size_t value = line + 2 + keyword.size();
    return message.substr(value, message.find("\r\n", value) - value);
  }

 private:
  UtcTimeZone utc_;
};

}  // namespace tqv::testing
