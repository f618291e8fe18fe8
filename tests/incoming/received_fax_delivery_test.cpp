#include "incoming/received_fax_delivery.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>

#include "host/entry_points.h"
#include "reports/report_fixture.h"
#include "reports/report_layout.h"

namespace tqv {
namespace {

// The whole road of S_FaxReceived: routing, the message, the receive log and the deletions.
class ReceivedFaxDelivery : public testing::ReportTest {
 protected:
  void SetUp() override {
    ReportTest::SetUp();
    WriteFile(ProductDir() + "/tqvadmin.ini",
              "[Recipient List]\r\nann=Ann\r\nbob=Bob\r\n[Recipients Properties]\r\nann=0\r\nbob=0\r\n"
              "[Routing]\r\nCSID_00000=bob,+49 89 1234\r\nCSID_00001=ann,+4989 1234\r\n");
    WriteFile(PathOf("fax.FAX"), "II*image");
    WriteFile(PathOf("fax.txt"), "Dear Bob\r\n");
    receive_.SetNumber(receive::Result, kResultReceived);
    receive_.SetText(receive::Info, "Received");
    receive_.SetNumber(receive::SpeedCode, 5);
    receive_.SetNumber(receive::CallDuration, 65);
    receive_.SetNumber(receive::PagesReceived, 2u);
    receive_.SetText(receive::Port, "COM2");
    receive_.SetNumber(receive::AttachOcrText, 1u);
    receive_.SetText(receive::FaxFile, PathOf("fax.FAX"));
    receive_.SetText(receive::OcrTextFile, PathOf("fax.txt"));
  }
  std::string LogLine() const {
    const std::string log = ReadFile(ProductDir() + "/rcvlog.txt");
    const std::size_t start = log.rfind("\r\n", log.size() - 3);
    return log.substr(start + 2);
  }

  std::array<unsigned char, kReceiveTouchedSize> record_{};
  ReceiveRecordView receive_{record_.data()};
};

TEST_F(ReceivedFaxDelivery, OneMessageToEveryRoutedUserCarriesImageAndText) {
  receive_.SetText(receive::RemoteId, "+49 89 1234");
  ASSERT_EQ(host::FaxReceived(record_.data()), 0);
  ASSERT_EQ(Messages().size(), 1u);
  const std::string report = FormatReceivedReport(receive_);
  EXPECT_EQ(
      Messages()[0],
      "X-Tnef-Attach:\r\nFile Type:\r\nMAIL FROM:+49 89 1234\r\nRCPT TO:bob\r\nRCPT TO:ann\r\nDATA:\r\n"
      "X-Message-Class:IPM.NOTE\r\nDate:1046873109\r\nX-Message-ID:\r\nExternal-Received-By:\r\n"
      "External-Received-At:\r\nExternal-Attempted-By:\r\nExternal-Deferred-At:\r\nInternal-Received-By:\r\n"
      "Internal-Received-At:\r\nInternal-Attempted-By:\r\nInternal-Deferred-At:\r\nFrom:+49 89 1234\r\n"
      "TO:bob\r\nTO:ann\r\nSubject:OK:  fax from +49 89 1234\r\nPriority:Normal\r\nImportance:Normal\r\n"
      "Custom-String:\r\nFAX-Status:4\r\nFAX-StatusInfo:Received\r\nFAX-NumRetries:0\r\n"
      "FAX-CallDuration:65\r\nFAX-PagesTransferred:2\r\nFAX-DeliveryTime:1046873109\r\n"
      "----beginbody:" +
          std::to_string(report.size() + 2) + "\r\n" + report +
          "\r\n\r\n----endbody\r\n"
          "----beginattach:fax.FAX:8\r\nII*image\r\n----endattach\r\n"
          "----beginattach:fax.txt:10\r\nDear Bob\r\n\r\n----endattach\r\n");
  EXPECT_TRUE(LogLine().ends_with(",\"SUCCESS\",\"Received\",\"COM2\",\"\",\"bob,ann\"\r\n"));
  EXPECT_FALSE(Exists(PathOf("fax.FAX")) || Exists(PathOf("fax.txt")));
}

// Nobody is routed and nobody takes unrouted faxes: the message still goes out, without the text.
TEST_F(ReceivedFaxDelivery, FailedReceptionFromAnUnknownStation) {
  receive_.SetNumber(receive::Result, 3u);
  ASSERT_EQ(host::FaxReceived(record_.data()), 0);
  const std::string message = Messages().at(0);
  EXPECT_EQ(HeaderOf(message, "MAIL FROM:") + "|" + HeaderOf(message, "Subject:"),
            "Unknown station|FAILED:  fax from Unknown station");
  EXPECT_EQ(HeaderOf(message, "RCPT TO:"), "(none)");
  EXPECT_NE(message.find("Status              : S3\r\n"), std::string::npos);
  EXPECT_NE(message.find("----beginattach:fax.FAX:"), std::string::npos);
  EXPECT_EQ(message.find("----beginattach:fax.txt:"), std::string::npos);
  EXPECT_NE(LogLine().find(",\"Unknown station\",\"01:05\",\"2\",\"FAILURE\","), std::string::npos);
  EXPECT_TRUE(LogLine().ends_with(",\"\"\r\n"));
  EXPECT_FALSE(Exists(PathOf("fax.FAX")) || Exists(PathOf("fax.txt")));
}

// Without a message file nothing is routed; the fax is logged as received and still deleted.
TEST_F(ReceivedFaxDelivery, NoMessageFileMeansNoRoutingButTheImageGoes) {
  WriteFile(ProductDir() + "/tqvadmin.ini",
            "[Recipient List]\r\nann=Ann\r\n[Recipients Properties]\r\nann=2\r\n");
  std::filesystem::remove_all(GatewayIn());
  host::FaxReceived(record_.data());
  EXPECT_NE(LogLine().find(",\"14:05:09\",\"\",\"01:05\","), std::string::npos) << "no station text";
  EXPECT_TRUE(LogLine().ends_with(",\"\"\r\n")) << "routed to nobody";
  EXPECT_FALSE(Exists(PathOf("fax.FAX")));
}

// A fax service that fills every text to the last byte: each is read within its field.
TEST_F(ReceivedFaxDelivery, TextsWithoutTerminatorsStayInTheirFields) {
  record_.fill('r');
  receive_.SetText(receive::FaxFile, PathOf("fax.FAX"));
  receive_.SetNumber(receive::Result, kResultReceived);
  receive_.SetNumber(receive::SpeedCode, 0);
  host::FaxReceived(record_.data());
  EXPECT_EQ(HeaderOf(Messages().at(0), "MAIL FROM:"), std::string(receive::RemoteId.size, 'r'));
  EXPECT_FALSE(Exists(PathOf("fax.FAX")));
}

}  // namespace
}  // namespace tqv
