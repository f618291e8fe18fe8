// Values that reach the header lines of a message the library writes come from mail senders, remote
// fax stations and the fax service's records. Read back as the mail gateway reads it, a report
// must name exactly the recipients the library chose, whatever those values hold.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "common/job_record.h"
#include "common/receive_record.h"
#include "gateway/message_reader.h"
#include "host/entry_points.h"
#include "reports/delivery_reports.h"
#include "reports/report_fixture.h"
#include "support/gateway_message.h"

namespace tqv {
namespace {

constexpr std::string_view kInjected = "RCPT TO:e@x.yz";

class ReportsSecurity : public testing::ReportTest {
 protected:
  void SetUp() override {
    ReportTest::SetUp();
    WriteFile(ProductDir() + "/tqvadmin.ini",
              "[Recipient List]\r\nann=Ann\r\n[Recipients Properties]\r\nann=7425\r\n");
  }

  // The recipients of the one message in the gateway-in directory, read line by line and block
  // by block as the mail gateway reads them.
  std::vector<std::string> RecipientsOfTheReport() {
    const std::vector<std::string> messages = Messages();
    EXPECT_EQ(messages.size(), 1u);
    if (messages.empty()) return {};
    WriteFile(PathOf("report.TMP"), messages.back());
    MessageReader reader;
    EXPECT_TRUE(reader.Open(PathOf("report.TMP")));
    std::vector<std::string> recipients;
    for (ReadCode code; (code = reader.ReadNext()) != ReadCode::End;) {
      if (code == ReadCode::Recipient) {
        std::array<char, 256> name{}, address{};
        reader.GetRecipient(name, address);
        recipients.emplace_back(address.data());
      } else if (code == ReadCode::Body) {
        EXPECT_TRUE(reader.ExtractBody(PathOf("block")));
      } else if (code == ReadCode::Attachment) {
        EXPECT_TRUE(reader.ExtractAttachment(PathOf("block")));
      }
    }
    return recipients;
  }

  void RemoveMessages() const {
    for (const auto &entry : std::filesystem::directory_iterator(GatewayIn()))
      std::filesystem::remove(entry.path());
  }
};

// The option is echoed into the error line, which the report carries as its status text: a line
// longer than the gateway reads whole would leave its tail to be read as a line of its own.
TEST_F(ReportsSecurity, LongOptionLineInAConversionErrorAddsNoRecipient) {
  const std::string echoed = "###ERROR: Unknown option ";
  const std::string option = std::string(240 - echoed.size(), 'x') + std::string(kInjected);
  WriteFile(GatewayOut() + "/MSG00001.TMP",
            testing::GatewayMessage{.sender = "ann", .recipients = {"0891"}, .body = "::" + option + "\r\n"}
                .Bytes());
  ScanLater();

  EXPECT_EQ(RecipientsOfTheReport(), std::vector<std::string>{"ann"});
  EXPECT_NE(Messages().back().find("FAX-StatusInfo:" + echoed + "xxx"), std::string::npos);
}

// The station identifier comes from the remote fax machine; status texts from the fax service.
TEST_F(ReportsSecurity, LineEndsInStationAndStatusTextsAddNoRecipient) {
  const std::string hostile = "+49 89\r\n" + std::string(kInjected) + "\r\n";
  const struct {
    const char *what;
    TextField field;
  } sentCases[] = {{"remote station of a sent fax", job::RemoteId},
                   {"status text of a sent fax", job::StatusInfo},
                   {"name of the fax recipient", job::RecipientName}};
  for (const auto &c : sentCases) {
    SCOPED_TRACE(c.what);
    JobRecord job = FaxJob("ann", "0891", kStatusDelivered);
    job.View().SetText(c.field, hostile);
    host::FaxSent(job.View().Bytes());
    EXPECT_EQ(RecipientsOfTheReport(), std::vector<std::string>{"ann"});
    RemoveMessages();
  }

  // Nobody is routed to this station: the fax still goes out as a message, to no one.
  std::array<unsigned char, kReceiveTouchedSize> record{};
  ReceiveRecordView receive(record.data());
  receive.SetNumber(receive::Result, kResultReceived);
  receive.SetText(receive::RemoteId, hostile);
  for (const char *info : {"Received", hostile.c_str()}) {
    SCOPED_TRACE(info);
    receive.SetText(receive::Info, info);
    host::FaxReceived(record.data());
    EXPECT_EQ(RecipientsOfTheReport(), std::vector<std::string>{});
    RemoveMessages();
  }
}

// A learned station identifier is written into the administration database, and every finished
// job and received fax is a line of a log: a line end in the identifier would add sections, users
// or log lines of the remote station's choosing.
TEST_F(ReportsSecurity, LineEndsInAStationIdentifierWriteNoLinesOfTheirOwn) {
  WriteFile(ProductDir() + "/tqvadmin.ini",
            "[Recipient List]\r\nann=Ann\r\n[Recipients Properties]\r\nann=129\r\n");
  const std::string hostile = "+49 89\r\n[Recipients Properties]\r\nmallory=1\r\n";
  JobRecord job = FaxJob("ann", "0891", kStatusDelivered);
  job.View().SetText(job::RemoteId, hostile);
  host::FaxSent(job.View().Bytes());

  const std::string database = ReadFile(ProductDir() + "/tqvadmin.ini");
  EXPECT_EQ(database.find("mallory"), std::string::npos) << database;

  std::array<unsigned char, kReceiveTouchedSize> received{};
  ReceiveRecordView receive(received.data());
  receive.SetNumber(receive::Result, kResultReceived);
  receive.SetText(receive::RemoteId, hostile);
  host::FaxReceived(received.data());
  for (const char *log : {"/sendlog.txt", "/rcvlog.txt"}) {
    SCOPED_TRACE(log);
    const std::string text = ReadFile(ProductDir() + log);
    // The header, its blank line and one line for the one fax.
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3) << text;
    EXPECT_NE(text.find("+49 89  [Recipients Properties]  mallory=1  "), std::string::npos) << text;
  }
}

}  // namespace
}  // namespace tqv
