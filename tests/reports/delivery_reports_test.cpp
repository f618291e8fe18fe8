#include "reports/delivery_reports.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reports/admin_listing.h"
#include "reports/report_fixture.h"
#include "reports/report_layout.h"

namespace tqv {
namespace {

class DeliveryReports : public testing::ReportTest {
 protected:
  JobRecord Job(std::uint32_t status, int senderProperties = 0) const {
    WriteFile(ProductDir() + "/tqvadmin.ini",
              "[Recipients Properties]\r\nann=" + std::to_string(senderProperties) + "\r\n");
    WriteFile(PathOf("d1.tif"), "II*one");
    JobRecord job = FaxJob("ann", "0891", status);
    JobRecordView view = job.View();
    view.SetText(job::RecipientName, "Bob");
    view.SetText(job::Subject, "Offer");
    view.SetNumber(job::FileCount, 2);
    view.SetText(job::File(0), PathOf("d1.tif"));
    view.SetText(job::File(1), PathOf("missing.tif"));
    return job;
  }
  static bool HasAttachment(const std::string &message) {
    return message.find("----beginattach:") != std::string::npos;
  }
};

TEST_F(DeliveryReports, SubjectNamesTheOutcomeTheSubjectAndTheNumber) {
  const struct {
    std::uint32_t status;
    std::string subject, faxNumber, expected;
  } cases[] = {
      {2, "Offer", "0891", "OK: Offer (to 0891)"},
      {6, "Offer", "0891", "FAILED: Offer (to 0891)"},
      {0, "", "0891", "FAILED: to 0891"},
      {3, std::string(300, 's'), std::string(150, 'n'),  // the record keeps 94 of the number
       "FAILED: " + std::string(100, 's') + " (to " + std::string(94, 'n') + ")"},
  };
  for (const auto &c : cases) {
    JobRecord job = Job(c.status);
    job.View().SetText(job::Subject, c.subject);
    job.View().SetText(job::FaxNumber, c.faxNumber);
    WriteDeliveryReport(job.View());
    EXPECT_EQ(HeaderOf(Messages().back(), "Subject:"), c.expected);
  }
}

// Documents go back only when the sender's properties ask for them for this outcome.
TEST_F(DeliveryReports, ReportCarriesReportAndMessageTextAndDocumentsByTheAttachRule) {
  const struct {
    int properties;
    std::uint32_t status;
    bool attached;
  } cases[] = {{0x800, 2, true}, {0x800, 5, false}, {0x400, 2, false}, {0x400, 6, true}, {0, 2, false}};
  for (const auto &c : cases) {
    JobRecord job = Job(c.status, c.properties);
    WriteDeliveryReport(job.View());
    EXPECT_EQ(HasAttachment(Messages().back()), c.attached) << c.properties << " " << c.status;
  }

  WriteFile(PathOf("text.txt"), "Dear Bob\r\n");
  JobRecord job = Job(3);
  job.View().SetText(job::MessageTextFile, PathOf("text.txt"));
  job.View().SetText(job::StatusInfo, "Busy");
  job.View().SetNumber(job::CallDuration, -4);
  job.View().SetText(job::CustomString, "ticket 7");
  WriteDeliveryReport(job.View());
  const std::string message = Messages().back();
  EXPECT_EQ(HeaderOf(message, "MAIL FROM:") + HeaderOf(message, "RCPT TO:"), "Bobann");
  EXPECT_EQ(HeaderOf(message, "Custom-String:") + HeaderOf(message, "FAX-Status:") +
                HeaderOf(message, "FAX-StatusInfo:") + HeaderOf(message, "FAX-CallDuration:"),
            "ticket 73Busy-4");
  const std::string report = FormatSentReport(job.View());
  EXPECT_TRUE(message.ends_with("----beginbody:" + std::to_string(report.size() + 12) + "\r\n" + report +
                                "Dear Bob\r\n\r\n\r\n----endbody\r\n"));
}

// The one-space body is written before the header lines; every document follows them.
TEST_F(DeliveryReports, JfaxMessageCarriesEveryDocumentAfterItsBody) {
  JobRecord job = Job(0);
  job.View().SetText(job::FaxNumber, "0891@jfax.example");
  job.View().SetNumber(job::FileCount, 99);  // held to 16: the empty entries add nothing
  WriteJfaxMessage(job.View());
  EXPECT_EQ(
      Messages().back(),
      "X-Tnef-Attach:\r\n----beginbody:3\r\n \r\n\r\n----endbody\r\n"
      "File Type:JFXTQVOUT\r\nMAIL FROM:ann\r\nRCPT TO:0891@jfax.example\r\nDATA:\r\n"
      "X-Message-Class:IPM.NOTE\r\nDate:1046873109\r\nX-Message-ID:\r\nExternal-Received-By:\r\n"
      "External-Received-At:\r\nExternal-Attempted-By:\r\nExternal-Deferred-At:\r\nInternal-Received-By:\r\n"
      "Internal-Received-At:\r\nInternal-Attempted-By:\r\nInternal-Deferred-At:\r\nFrom:ann\r\n"
      "TO:0891@jfax.example\r\nSubject:Offer\r\nPriority:Normal\r\nImportance:Normal\r\nCustom-String:\r\n"
      "FAX-Status:0\r\nFAX-StatusInfo:\r\nFAX-NumRetries:0\r\nFAX-CallDuration:0\r\n"
      "FAX-PagesTransferred:0\r\nFAX-DeliveryTime:1046873109\r\n"
      "----beginattach:d1.tif:6\r\nII*one\r\n----endattach\r\n");
}

TEST_F(DeliveryReports, ConversionErrorReportShowsTheErrorLineAndTheMessage) {
  WriteFile(PathOf("body.tmp"), "Please fax\r\n");
  const std::vector<std::string> attachments = {PathOf("d1.tif")};
  Job(0);  // writes d1.tif
  WriteConversionErrorReport("0891", "ann", "Order", std::string(600, 'e'), PathOf("body.tmp"), attachments,
                             std::string_view("ref\0junk", 8));
  WriteConversionErrorReport(std::string(150, 'a'), "ann", "", "short", "", {}, "");

  const std::vector<std::string> messages = Messages();
  const std::string errorLine = "###ERROR: " + std::string(500, 'e');
  EXPECT_EQ(HeaderOf(messages[0], "Subject:"), "FAILED: Order (to0891)") << "no space after text 902";
  EXPECT_EQ(HeaderOf(messages[0], "FAX-Status:") + HeaderOf(messages[0], "Custom-String:"), "6ref");
  // The status line keeps what a gateway reads as one line; the body has the whole error line.
  EXPECT_EQ(HeaderOf(messages[0], "FAX-StatusInfo:"), errorLine.substr(0, 253 - 15));
  EXPECT_NE(messages[0].find("----beginbody:524\r\n" + errorLine + "Please fax\r\n"), std::string::npos);
  EXPECT_TRUE(HasAttachment(messages[0]));
  EXPECT_EQ(HeaderOf(messages[1], "Subject:"), "FAILED: to" + std::string(100, 'a'));
}

TEST_F(DeliveryReports, AdminReplyComesFromFaxadminWithTheListing) {
  WriteAdminReply("ann", "Store " + std::string(200, 'c'), true, "");
  WriteAdminReply("ann", "Delete", false, "No such file");
  const std::vector<std::string> messages = Messages();
  EXPECT_EQ(HeaderOf(messages[0], "Subject:"), "OK:  Store " + std::string(94, 'c'));
  EXPECT_EQ(HeaderOf(messages[1], "MAIL FROM:") + HeaderOf(messages[1], "RCPT TO:"), "FAXADMINann");
  EXPECT_EQ(HeaderOf(messages[1], "Subject:"), "FAILED:  Delete");
  const std::string listing = FormatAdminListing("ann", "No such file");
  EXPECT_TRUE(messages[1].ends_with(
      "FAX-Status:0\r\nFAX-StatusInfo:\r\nFAX-NumRetries:0\r\nFAX-CallDuration:0\r\n"
      "FAX-PagesTransferred:0\r\nFAX-DeliveryTime:1046873109\r\n----beginbody:" +
      std::to_string(listing.size() + 2) + "\r\n" + listing + "\r\n\r\n----endbody\r\n"));
}

}  // namespace
}  // namespace tqv
