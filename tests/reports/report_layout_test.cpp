#include "reports/report_layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <string>

#include "reports/report_fixture.h"

namespace tqv {
namespace {

using ReportLayout = testing::ReportTest;
using testing::Crlf;

// Speed, duration and resolution show only after a connection (SpeedCode above 0). Label 630 has
// 25 characters and shows 20; label 627 has 3 and is padded to 20.
TEST_F(ReportLayout, SentReportShowsConnectionValuesOnlyForPositiveSpeedCodes) {
  const struct {
    std::int32_t speedCode;
    std::uint32_t status;
    std::string statusText, speed, duration, resolution;
  } cases[] = {
      {0, 2, "Delivered", " ", " ", " "},
      {3, 2, "Delivered", "9600 bps", "02:05", "Fine"},
      {9, 7, "?????", "?????", "02:05", "Fine"},
  };
  for (const auto &c : cases) {
    JobRecord job = FaxJob("", "089 123", c.status);
    JobRecordView view = job.View();
    view.SetText(job::StatusInfo, "All pages sent");
    view.SetNumber(job::SpeedCode, c.speedCode);
    view.SetNumber(job::NumRetries, 1u);
    view.SetNumber(job::CallDuration, 125);
    view.SetNumber(job::PagesTransferred, 2u);
    view.SetNumber(job::TotalPages, 3u);
    view.SetNumber(job::FineResolution, 1u);
    const std::string banner(57, '*');
    EXPECT_EQ(FormatSentReport(view), Crlf(banner + "\nFax Report\n" + banner + R"(
Fax number          : 089 123
Status              : )" + c.statusText + R"(
Date                : 05/03/2003  2:05:09 PM
Result              : All pages sent
Remote station ident: 
Speed               : )" + c.speed + R"(
Retries             : 1
Duration            : )" + c.duration + R"(
Pages               : 2 of 3
Res                 : )" + c.resolution + "\n" +
                                           banner + "\n\n"));
  }
}

TEST_F(ReportLayout, ReceivedAndVoicemailReportsHaveTheirOwnLines) {
  std::array<unsigned char, kReceiveTouchedSize> record{};
  ReceiveRecordView receive(record.data());
  receive.SetNumber(receive::Result, kResultReceived);
  receive.SetNumber(receive::PagesReceived, 4u);
  EXPECT_NE(FormatReceivedReport(receive).find(Crlf(R"(
Status              : Received
Date                : 05/03/2003  2:05:09 PM
Result              : 
Remote station ident: 
Speed               :  
Call length         :  
Pages received      : 4
Res                 :  
)")),
            std::string::npos);

  // A recording of 0 seconds is still announced with its duration.
  EXPECT_EQ(FormatVoicemailReport(12, 5, 0, 16000, ""), Crlf(std::string(57, '*') + R"(
Voicemail
*********************************************************
Message             : 5
Date                : 05/03/2003  2:05:09 PM
Length              : 00:00
Size                : 16000 bytes
Digits              : 
Box                 : 12
*********************************************************

)"));
}

// Text 631 comes from an editable file: only integer conversions take the two numbers.
TEST_F(ReportLayout, PagesFormatTakesOnlyItsTwoNumbers) {
  const struct {
    const char *format, *shown;
  } cases[] = {{"%s %d", "%s 2"}, {"%d%% %5d %d", "2%     3 %d"}, {"%ld/%n", "2/%n"}, {"%999d%", "%999d%"}};
  JobRecord job = JobRecord::WithTag(kFaxJobTag);
  job.View().SetNumber(job::PagesTransferred, 2u);
  job.View().SetNumber(job::TotalPages, 3u);
  for (const auto &c : cases) {
    WriteFile(ProductDir() + "/tqstring.ini",
              "[English]\r\nT626=Pages\r\nT631=" + std::string(c.format) + "\r\n");
    EXPECT_NE(FormatSentReport(job.View()).find("Pages               : " + std::string(c.shown) + "\r\n"),
              std::string::npos)
        << c.format;
  }
}

TEST_F(ReportLayout, GarbageRecordsAndLongTextsStayWithinTheBodyRoom) {
  EXPECT_EQ(DurationText(3600) + " " + DurationText(INT_MIN), "60:00 -35791394:-8");
  EXPECT_EQ(StatusText(0xFFFFFFFFu) + SpeedText(-1), "??????????");
  JobRecord job = JobRecord::WithTag(kFaxJobTag);
  std::fill_n(job.View().Bytes(), kJobRecordSize, 'x');
  job.View().SetNumber(job::Status, kStatusDelivered);
  EXPECT_NE(FormatSentReport(job.View()).find(": " + std::string(96, 'x') + "\r\n"), std::string::npos)
      << "a text without its NUL ends with its field";

  WriteFile(ProductDir() + "/tqstring.ini", "[English]\r\nT642=" + std::string(510, 's') +
                                                "\r\nT631=" + std::string(510, 'p') +
                                                "\r\nT620=" + std::string(254, 't') + "\r\n");
  const std::string report = FormatSentReport(job.View());
  EXPECT_EQ(report.size(), kReportBodyRoom);
  EXPECT_TRUE(report.ends_with("ppp"));
}

// Titles are whole texts of the string file, not cut to the room of a field label.
TEST_F(ReportLayout, TitlesAreWholeTextsOfTheStringFile) {
  const std::string sentTitle(400, 't'), voicemailTitle(510, 'v');
  WriteFile(ProductDir() + "/tqstring.ini",
            "[English]\r\nT620=" + sentTitle + "\r\nT650=" + voicemailTitle + "\r\n");
  JobRecord job = JobRecord::WithTag(kFaxJobTag);
  EXPECT_NE(FormatSentReport(job.View()).find("\r\n" + sentTitle + "\r\n"), std::string::npos);
  std::array<unsigned char, kReceiveTouchedSize> received{};
  EXPECT_NE(FormatReceivedReport(ReceiveRecordView(received.data())).find("\r\n" + sentTitle + "\r\n"),
            std::string::npos);
  EXPECT_NE(FormatVoicemailReport(12, 5, 0, 16000, "").find("\r\n" + voicemailTitle + "\r\n"),
            std::string::npos);
}

}  // namespace
}  // namespace tqv
