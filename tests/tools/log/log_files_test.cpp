// `tqv log` reads back what the library's own writers put into sendlog.txt and rcvlog.txt: values
// with commas, and even with the '","' that separates columns, keep their place.
#include <array>
#include <string>
#include <vector>

#include "reports/receive_log.h"
#include "reports/report_fixture.h"
#include "reports/send_log.h"
#include "tqv/log/log_files.h"

namespace tqv::tool {
namespace {

class LogFiles : public testing::ReportTest {
 protected:
  void SetUp() override {
    ReportTest::SetUp();
    WriteRegionalSettings("sShortDate=dd/MM/yyyy\r\n");
  }

  void LogSent(const std::string &company, const std::string &info, std::uint32_t status,
               std::uint32_t pages) {
    JobRecord job = JobRecord::WithTag(kFaxJobTag);
    JobRecordView view = job.View();
    view.SetText(job::SenderEmail, "ann");
    view.SetText(job::SenderName, "Smith, Ann");
    view.SetText(job::Party(job::RecipientParty, PartyField::LastName), "Doe");
    view.SetText(job::Party(job::RecipientParty, PartyField::Company), company);
    view.SetText(job::RecipientNumber, "089 1");
    view.SetNumber(job::CallDuration, 125);
    view.SetNumber(job::PagesTransferred, pages);
    view.SetNumber(job::Status, status);
    view.SetText(job::StatusInfo, info);
    view.SetText(job::Port, "COM1");
    AppendSendLog(view);
  }
};

TEST_F(LogFiles, LinesTheLibraryWroteReadBackColumnByColumn) {
  LogSent("ACME, Inc", "said \"ok\"", kStatusDelivered, 3);
  LogSent("Doe & Co", "busy\",\"then hung up", 3, 0);
  std::array<unsigned char, kReceiveTouchedSize> record{};
  ReceiveRecordView receive(record.data());
  receive.SetText(receive::RemoteId, "HQ\",\"Sales, 2nd floor");
  receive.SetNumber(receive::CallDuration, 3600);
  receive.SetNumber(receive::PagesReceived, 2u);
  receive.SetNumber(receive::Result, kResultReceived);
  receive.SetText(receive::Info, "ok, fine");
  RecipientList routed;
  routed.Add("ann");
  routed.Add("bob");
  AppendReceiveLog(receive, routed);
  WriteFile(ProductDir() + "/rcvlog.txt", ReadFile(ProductDir() + "/rcvlog.txt") + "not a log line\r\n");

  const std::optional<LogContents> sent = ReadLogFile(LogKind::Send, ProductDir() + "\\sendlog.txt");
  ASSERT_TRUE(sent.has_value());
  EXPECT_EQ(sent->unreadable, 0u);
  const std::vector<LogLine> expectedSent = {
      {"05/03/2003", "14:05:09", "ann", "Smith, Ann", "", "", "Doe", "ACME, Inc", "089 1", "02:05", "3",
       "SUCCESS", "said \"ok\"", "COM1", ""},
      {"05/03/2003", "14:05:09", "ann", "Smith, Ann", "", "", "Doe", "Doe & Co", "089 1", "02:05", "0",
       "FAILURE", "busy\",\"then hung up", "COM1", ""},
  };
  EXPECT_EQ(sent->lines, expectedSent);

  const std::optional<LogContents> received = ReadLogFile(LogKind::Receive, ProductDir() + "\\rcvlog.txt");
  ASSERT_TRUE(received.has_value());
  EXPECT_EQ(received->unreadable, 1u);
  const std::vector<LogLine> expectedReceived = {{"05/03/2003", "14:05:09", "HQ\",\"Sales, 2nd floor",
                                                  "60:00", "2", "SUCCESS", "ok, fine", "", "", "ann,bob"}};
  EXPECT_EQ(received->lines, expectedReceived);
  EXPECT_FALSE(ReadLogFile(LogKind::Send, PathOf("nothing.txt")).has_value());
}

TEST_F(LogFiles, TableAlignsTheMainColumnsAndEndsWithTotals) {
  LogSent("ACME, Inc", "said \"ok\"", kStatusDelivered, 3);
  LogSent("Doe & Co", "busy", 3, 0);
  LogSent("Doe & Co", "done", kStatusDelivered, 4);
  const std::vector<LogLine> lines = ReadLogFile(LogKind::Send, ProductDir() + "\\sendlog.txt")->lines;
  EXPECT_EQ(RenderLogTable(LogKind::Send, lines),
            "Date        Time      Sender  Recipient  Number  Duration  Pages  Result   Info\n"
            "05/03/2003  14:05:09  ann     Doe        089 1   02:05     3      SUCCESS  said \"ok\"\n"
            "05/03/2003  14:05:09  ann     Doe        089 1   02:05     0      FAILURE  busy\n"
            "05/03/2003  14:05:09  ann     Doe        089 1   02:05     4      SUCCESS  done\n"
            "\n3 faxes, 7 pages, 2 successful (66%)\n");
  const std::string json = RenderLogJson(LogKind::Send, lines);
  EXPECT_NE(json.find("\"RecipientCompany\":\"ACME, Inc\""), std::string::npos) << json;
  EXPECT_NE(json.find("\"totals\":{\"faxes\":3,\"pages\":7,\"successes\":2,\"successPercent\":66}"),
            std::string::npos)
      << json;
  EXPECT_EQ(
      RenderLogTable(LogKind::Receive, {}),
      "Date  Time  Remote  Duration  Pages  Result  Info  Routed to\n\n0 faxes, 0 pages, 0 successful\n");
}

// Pieces beyond the header's columns can be put back only next to the fixed columns; where two
// free-text columns could have taken them, the line is unreadable rather than shifted.
TEST(LogLines, ExtraSeparatorsJoinTheFreeTextBesideTheFixedColumns) {
  const struct {
    LogKind kind;
    const char *line;
    std::optional<LogLine> values;
  } cases[] = {
      {LogKind::Receive, R"("d","t","a","b","01:02","3","FAILURE","x","y","COM1","","ann")",
       LogLine{"d", "t", "a\",\"b", "01:02", "3", "FAILURE", "x\",\"y", "COM1", "", "ann"}},
      {LogKind::Send, R"("d","t","s","n","","","r","c","1","00:01","1","SUCCESS","i","p","a,b")",
       LogLine{"d", "t", "s", "n", "", "", "r", "c", "1", "00:01", "1", "SUCCESS", "i", "p", "a,b"}},
      {LogKind::Send, R"("d","t","s","n1","n2","","","r","c","1","00:01","1","SUCCESS","i","p","")",
       std::nullopt},
      {LogKind::Receive, R"("d","t","a","01:02","3","DONE","x","COM1","","")",
       LogLine{"d", "t", "a", "01:02", "3", "DONE", "x", "COM1", "", ""}},
      {LogKind::Receive, R"("d","t","a","b","01:02","3","DONE","x","COM1","","")", std::nullopt},
      {LogKind::Receive, R"("d","t","a","01:02","3","SUCCESS","x","COM1","")", std::nullopt},
      {LogKind::Receive, R"("d","t","a","01:02","3","SUCCESS","x","COM1","","ann)", std::nullopt},
  };
  for (const auto &c : cases)
    EXPECT_EQ(ParseLogLine(c.kind, c.line), c.values) << c.line;
}

// Dates are read back by the picture that wrote them; --since keeps what it can date.
TEST_F(LogFiles, DatesAreReadByTheRegionalPicture) {
  const struct {
    const char *intl, *date;
    std::optional<LogDay> day;
  } cases[] = {
      {"sShortDate=dd/MM/yyyy\r\n", "05/03/2003", LogDay{2003, 3, 5}},
      {"sShortDate=d/M/yy\r\n", "5/3/03", LogDay{2003, 3, 5}},
      {"sShortDate=d/M/yy\r\n", "15/12/03", LogDay{2003, 12, 15}},
      {"sShortDate=dd.MM.yyyy\r\nsDate=.\r\n", "05.03.2003", LogDay{2003, 3, 5}},
      {"sShortDate=dd/MM/yyyy\r\n", "05-03-2003", std::nullopt},
      {"sShortDate=dd/MM/yyyy\r\n", "", std::nullopt},
      {"sDate=/\r\n", "05/03/2003", std::nullopt},
  };
  for (const auto &c : cases) {
    WriteRegionalSettings(c.intl);
    EXPECT_EQ(ParseLogDay(c.date), c.day) << c.intl << c.date;
  }
  WriteRegionalSettings("sShortDate=dd/MM/yyyy\r\n");
  const std::vector<LogLine> lines = {LogLine(10, ""), LogLine(10, ""), LogLine(10, "")};
  std::vector<LogLine> dated = lines;
  dated[0][0] = "04/03/2003";
  dated[1][0] = "05/03/2003";
  EXPECT_EQ(LinesSince(dated, *ParseIsoDay("2003-03-05")), std::vector<LogLine>{dated[1]});
  EXPECT_FALSE(ParseIsoDay("2003-3-5").has_value());
  EXPECT_FALSE(ParseIsoDay("2003-13-01").has_value());
}

}  // namespace
}  // namespace tqv::tool
