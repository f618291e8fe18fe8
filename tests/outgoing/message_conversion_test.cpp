#include "outgoing/message_conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "common/job_record.h"
#include "host/entry_points.h"
#include "support/gateway_message.h"
#include "support/installation.h"

namespace tqv {
namespace {

namespace fs = std::filesystem;
using Message = testing::GatewayMessage;

class MessageConversion : public testing::InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    WriteFile(ProductDir() + "/tqstring.ini",
              "[English]\r\nT706=Sender may not fax\r\nT712=No template\r\nT713=Nothing to send\r\n"
              "T720=Unknown option %s\r\nT828=No remote administration\r\n");
    AddFaxingSender();
    ASSERT_EQ(host::Initialise(0, ""), 0);
  }

  // Drops the message and runs one scan call with its conversion pass.
  void Convert(const Message &message) {
    WriteFile(GatewayOut() + "/MSG00001.TMP", message.Bytes());
    ScanLater();
  }

  std::size_t FilesIn(const std::string &directory) const { return FileNames(Native(directory)).size(); }
  std::string WorkDir() const { return ProductDir() + "\\TEMP\\TQVSPOOL"; }
};

TEST_F(MessageConversion, EachRecipientGetsAJobWithItsOwnCopies) {
  Message message;
  message.recipients = {"089 123 456@fax", "Bob_Builder.ACME.+49 30 555 <bob@example.com>", "0711 42@fax"};
  message.body = "::h,b17\r\nPlease fax this.\r\n";
  message.attachments = {{"order.pdf", "%PDF-1"}, {"terms", "plain terms"}};
  message.customString = "ref-42";
  Convert(message);

  const std::vector<JobRecord> jobs = PendingJobs();
  ASSERT_EQ(jobs.size(), 3u);
  std::vector<std::string> documents;
  for (const JobRecord &record : jobs) {
    const JobRecordView job = record.View();
    EXPECT_EQ(job.Raw(job::Tag), kFaxJobTag);
    EXPECT_EQ(
        job.Text(job::SenderName) + "|" + job.Text(job::BillingCode) + "|" + job.Text(job::CustomString),
        "Ann Example|17|ref-42");
    EXPECT_EQ(job.Number(job::FineResolution), 1u);
    EXPECT_EQ(ReadFile(Native(job.Text(job::MessageTextFile))), "Please fax this.\r\n");
    EXPECT_EQ(job.Text(job::TemplateFile), ProductDir() + "/COVER/memo.rtf");
    ASSERT_EQ(job.Number(job::FileCount), 2);
    EXPECT_EQ(ReadFile(Native(job.Text(job::File(0)))), "%PDF-1");
    EXPECT_EQ(ReadFile(Native(job.Text(job::File(1)))), "plain terms");
    EXPECT_EQ(fs::path(job.Text(job::File(1))).extension(), ".FAX");
    documents.push_back(job.Text(job::File(0)));
    documents.push_back(job.Text(job::MessageTextFile));
  }
  std::sort(documents.begin(), documents.end());
  EXPECT_EQ(std::unique(documents.begin(), documents.end()), documents.end()) << "copies are not shared";

  const JobRecordView bob = jobs[1].View();
  EXPECT_EQ(bob.Text(job::RecipientNumber), "Bob_Builder.ACME.+49 30 555 <bob@example.com>");
  EXPECT_EQ(bob.Text(job::Party(job::RecipientParty, PartyField::FirstName)) + "|" +
                bob.Text(job::Party(job::RecipientParty, PartyField::Company)) + "|" +
                bob.Text(job::Party(job::RecipientParty, PartyField::FaxNo)),
            "Bob Builder|ACME|+49 30 555");

  EXPECT_EQ(FilesIn(GatewayOut()), 0u) << "the message is gone";
  EXPECT_EQ(FilesIn(WorkDir()), 0u) << "the work directory is emptied";
  EXPECT_TRUE(Messages().empty());
}

TEST_F(MessageConversion, JobFilesThatCannotBeCreatedAreReportedToTheOperator) {
  Message message;
  message.recipients = {"0711 41@fax", "0711 42@fax"};
  message.attachments = {{"a.tif", "II*"}};
  // A pending "directory" that is a file refuses every job file, as a full disk would.
  fs::remove_all(Native(PendingDir()));
  WriteFile(Native(PendingDir()), "");
  Convert(message);
  fs::remove(Native(PendingDir()));
  fs::create_directory(Native(PendingDir()));
  EXPECT_TRUE(PendingJobs().empty());
  ASSERT_FALSE(Events().empty());
  EXPECT_NE(Events().back().find("Message from 'ann@example.com' with subject 'Order'"), std::string::npos);
  EXPECT_NE(Events().back().find("2 of 2 recipients were not queued"), std::string::npos);
}

TEST_F(MessageConversion, FileTypeInAnyCaseForcesTheTagForEveryRecipient) {
  Message message;
  message.fileType = "jfxtqvout";
  message.recipients = {"089 123@fax", "0711 42@fax"};
  message.attachments = {{"a.tif", "II*"}};
  Convert(message);
  const std::vector<JobRecord> jobs = PendingJobs();
  ASSERT_EQ(jobs.size(), 2u);
  for (const JobRecord &job : jobs)
    EXPECT_EQ(job.View().Raw(job::Tag), kJfaxJobTag);
  EXPECT_NE(jobs[0].View().Text(job::FaxNumber).find('@'), std::string::npos) << "a JFAX address";
}

// A refused message makes no job; its sender hears why, unless it named nobody at all.
TEST_F(MessageConversion, RefusalsAreReportedWithTheirTextAndMakeNoJob) {
  const struct {
    const char *what;
    Message message;
    const char *text;  // nullptr: no report
  } cases[] = {
      {"sender in another letter case",
       {.sender = "Ann@example.com", .attachments = {{"a.tif", "II*"}}},
       "Sender may not fax"},
      {"no cover page, no text, no document", {.body = "::C=NONE\r\n"}, "Nothing to send"},
      {"unknown option", {.body = "::S\r\nText\r\n"}, "Unknown option S"},
      {"no recipients", {.recipients = {}, .attachments = {{"a.tif", "II*"}}}, nullptr},
      // Last: without a default template, a message with text cannot be laid out.
      {"no template", {.body = "Text\r\n"}, "No template"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    if (std::string_view(c.what) == "no template")
      WriteFile(
          ProductDir() + "/tqvadmin.ini",
          "[Recipient List]\r\nann@example.com=Ann\r\n[Recipients Properties]\r\nann@example.com=1\r\n");
    Convert(c.message);
    EXPECT_TRUE(PendingJobs().empty());
    const std::vector<std::string> reports = Messages();
    ASSERT_EQ(reports.size(), c.text ? 1u : 0u);
    if (c.text) {
      EXPECT_NE(reports[0].find("FAX-Status:6\r\n"), std::string::npos);
      EXPECT_NE(reports[0].find("###ERROR: " + std::string(c.text)), std::string::npos);
    }
    for (const auto &entry : fs::directory_iterator(GatewayIn()))
      fs::remove(entry.path());
  }
}

TEST_F(MessageConversion, FullTablesStopSilentlyOneLessConverts) {
  Message documents;
  for (int i = 0; i < 16; ++i)
    documents.attachments.push_back({"p" + std::to_string(i) + ".tif", "II*"});
  Convert(documents);
  EXPECT_TRUE(PendingJobs().empty());
  documents.attachments.pop_back();
  Convert(documents);
  ASSERT_EQ(PendingJobs().size(), 1u);
  EXPECT_EQ(PendingJobs()[0].View().Number(job::FileCount), 15);
  for (const auto &entry : fs::directory_iterator(Native(PendingDir())))
    fs::remove(entry.path());

  Message recipients;
  recipients.attachments = {{"a.tif", "II*"}};
  recipients.recipients.assign(1024, "0711 42@fax");
  Convert(recipients);
  EXPECT_TRUE(PendingJobs().empty());
  recipients.recipients.pop_back();
  Convert(recipients);
  EXPECT_EQ(PendingJobs().size(), 1023u);
  EXPECT_TRUE(Messages().empty());
  EXPECT_EQ(FilesIn(GatewayOut()), 0u);
}

TEST_F(MessageConversion, AdministrationRequestIsAnsweredNotFaxed) {
  Convert({.recipients = {"0711 42@fax", "faxadmin@fax"},
           .subject = "A=Price list",
           .attachments = {{"prices.tif", "II*"}}});
  EXPECT_TRUE(PendingJobs().empty());
  const std::vector<std::string> reports = Messages();
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_NE(reports[0].find("MAIL FROM:FAXADMIN\r\n"), std::string::npos);
  EXPECT_NE(reports[0].find("    Price list                      3 bytes\r\n"), std::string::npos)
      << reports[0];
  EXPECT_EQ(reports[0].find("###ERROR"), std::string::npos);
  EXPECT_EQ(FilesIn(ProductDir() + "\\ATTACH"), 1u);
  EXPECT_EQ(FilesIn(WorkDir()), 0u) << "the request's own files are gone";
}

}  // namespace
}  // namespace tqv
