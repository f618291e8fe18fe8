#include "outgoing/message_conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "common/job_record.h"
#include "host/entry_points.h"
#include "platform/clock.h"
#include "platform/file.h"
#include "support/installation.h"

namespace tqv {
namespace {

namespace fs = std::filesystem;

struct Attachment {
  std::string name;
  std::string bytes;
};

// A gateway message as the mail gateway drops it into the gateway-out directory.
struct Message {
  std::string sender = "ann@example.com";
  std::vector<std::string> recipients = {"089 123 456@fax"};
  std::string subject = "Order";
  std::string body;
  std::vector<Attachment> attachments;
  std::string fileType;

  std::string Bytes() const {
    std::string bytes = "File Type:" + fileType + "\r\nMAIL FROM:" + sender + "\r\n";
    for (const std::string &recipient : recipients)
      bytes += "RCPT TO:" + recipient + "\r\n";
    bytes += "Subject:" + subject + "\r\nCustom-String:ref-42\r\n";
    if (!body.empty())
      bytes += "----beginbody:" + std::to_string(body.size()) + "\r\n" + body + "\r\n----endbody\r\n";
    for (const Attachment &attachment : attachments)
      bytes += "----beginattach:" + attachment.name + ":" + std::to_string(attachment.bytes.size()) + "\r\n" +
               attachment.bytes + "\r\n----endattach\r\n";
    return bytes;
  }
};

class MessageConversion : public testing::InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    WriteFile(ProductDir() + "/tqstring.ini",
              "[English]\r\nT706=Sender may not fax\r\nT712=No template\r\nT713=Nothing to send\r\n"
              "T720=Unknown option %s\r\nT828=No remote administration\r\n");
    fs::create_directories(ProductDir() + "/COVER");
    WriteFile(ProductDir() + "/COVER/memo.rtf", "{\\rtf memo}");
    WriteFile(ProductDir() + "/tqvadmin.ini",
              "[Recipient List]\r\nann@example.com=Ann Example\r\n[Recipients Properties]\r\n"
              "ann@example.com=7425\r\n[ann@example.com]\r\nT_00000=TEMPLATE," +
                  ProductDir() + "/COVER/memo.rtf\r\nDefaultTemplate=TEMPLATE\r\n");
    platform::SetTickCountSource([this] { return tick; });
    ASSERT_EQ(host::Initialise(0, ""), 0);
  }

  // Drops the message and runs one scan call with its conversion pass.
  void Convert(const Message &message, const std::string &name = "MSG00001.TMP") {
    WriteFile(GatewayOut() + "/" + name, message.Bytes());
    tick += 20000;
    std::array<unsigned char, kJobRecordSize> buffer{};
    host::Scan(0, buffer.data());
  }

  std::size_t FilesIn(const std::string &directory) const { return FileNames(Native(directory)).size(); }
  std::string WorkDir() const { return ProductDir() + "\\TEMP\\TQVSPOOL"; }

  std::uint32_t tick = 1000;
};

TEST_F(MessageConversion, EachRecipientGetsAJobWithItsOwnCopies) {
  Message message;
  message.recipients = {"089 123 456@fax", "Bob_Builder.ACME.+49 30 555 <bob@example.com>", "0711 42@fax"};
  message.body = "::h,b17\r\nPlease fax this.\r\n";
  message.attachments = {{"order.pdf", "%PDF-1"}, {"terms", "plain terms"}};
  Convert(message);

  const std::vector<JobRecord> jobs = PendingJobs();
  ASSERT_EQ(jobs.size(), 3u);
  std::vector<std::string> documents;
  for (const JobRecord &record : jobs) {
    const JobRecordView job = record.View();
    EXPECT_EQ(job.Raw(job::Tag), kFaxJobTag);
    EXPECT_EQ(job.Text(job::SenderName), "Ann Example");
    EXPECT_EQ(job.Number(job::FineResolution), 1u);
    EXPECT_EQ(job.Text(job::BillingCode), "17");
    EXPECT_EQ(job.Text(job::CustomString), "ref-42");
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
  EXPECT_EQ(bob.Text(job::Party(job::RecipientParty, PartyField::FirstName)), "Bob Builder");
  EXPECT_EQ(bob.Text(job::Party(job::RecipientParty, PartyField::Company)), "ACME");
  EXPECT_EQ(bob.Text(job::Party(job::RecipientParty, PartyField::FaxNo)), "+49 30 555");

  EXPECT_EQ(FilesIn(GatewayOut()), 0u) << "the message is gone";
  EXPECT_EQ(FilesIn(WorkDir()), 0u) << "the work directory is emptied";
  EXPECT_TRUE(Messages().empty());
}

TEST_F(MessageConversion, ReportReachesTheSenderOnceTheHostHasSentTheJob) {
  Message message;
  message.attachments = {{"a.tif", "II*"}};
  Convert(message);
  std::array<unsigned char, kJobRecordSize> buffer{};
  ASSERT_EQ(host::Scan(1, buffer.data()), 1);
  JobRecordView job(buffer.data());
  EXPECT_NE(host::ScannedEventAccepted(buffer.data()), 0);
  job.SetNumber(job::Status, kStatusDelivered);
  EXPECT_TRUE(Messages().empty());
  host::FaxSent(buffer.data());

  const std::vector<std::string> reports = Messages();
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_NE(reports[0].find("RCPT TO:ann@example.com\r\n"), std::string::npos);
  EXPECT_NE(reports[0].find("FAX-Status:2\r\n"), std::string::npos);
  EXPECT_NE(reports[0].find("Custom-String:ref-42\r\n"), std::string::npos);
  EXPECT_EQ(FilesIn(PendingDir()), 0u) << "the job's documents are gone";
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
  const std::vector<std::string> events = Events();
  ASSERT_FALSE(events.empty());
  EXPECT_NE(events.back().find("Message from 'ann@example.com' with subject 'Order'"), std::string::npos);
  EXPECT_NE(events.back().find("2 of 2 recipients were not queued"), std::string::npos);
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

TEST_F(MessageConversion, RefusalsAreReportedWithTheirTextAndMakeNoJob) {
  struct Case {
    const char *what;
    Message message;
    std::string text;
  };
  Message otherCase;
  otherCase.sender = "Ann@example.com";
  otherCase.attachments = {{"a.tif", "II*"}};
  Message noneCover;
  noneCover.body = "::C=NONE\r\n";
  Message noTemplate;
  noTemplate.sender = "ann@example.com";
  noTemplate.body = "Text\r\n";
  Message badOption;
  badOption.body = "::S\r\nText\r\n";
  const Case cases[] = {
      {"sender in another letter case", otherCase, "Sender may not fax"},
      {"no cover page, no text, no document", noneCover, "Nothing to send"},
      {"unknown option", badOption, "Unknown option S"},
  };
  for (const Case &c : cases) {
    Convert(c.message);
    EXPECT_TRUE(PendingJobs().empty()) << c.what;
    const std::vector<std::string> reports = Messages();
    ASSERT_EQ(reports.size(), 1u) << c.what;
    EXPECT_NE(reports[0].find("FAX-Status:6\r\n"), std::string::npos) << c.what;
    EXPECT_NE(reports[0].find("###ERROR: " + c.text), std::string::npos) << c.what;
    for (const auto &entry : fs::directory_iterator(GatewayIn()))
      fs::remove(entry.path());
  }

  // Without a default template, a message with text cannot be laid out.
  WriteFile(ProductDir() + "/tqvadmin.ini",
            "[Recipient List]\r\nann@example.com=Ann\r\n[Recipients Properties]\r\nann@example.com=1\r\n");
  Convert(noTemplate);
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_NE(Messages()[0].find("###ERROR: No template"), std::string::npos);
  EXPECT_TRUE(PendingJobs().empty());
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

TEST_F(MessageConversion, NoRecipientsMakesNoJobAndNoReport) {
  Message message;
  message.recipients.clear();
  message.attachments = {{"a.tif", "II*"}};
  Convert(message);
  EXPECT_TRUE(PendingJobs().empty());
  EXPECT_TRUE(Messages().empty());
}

TEST_F(MessageConversion, AttachmentNamesCannotLeaveTheWorkDirectory) {
  Message message;
  message.attachments = {{"x.\\..\\..\\..\\evil", "bad"}, {"y./tmp/evil", "bad"}};
  Convert(message);
  const std::vector<JobRecord> jobs = PendingJobs();
  ASSERT_EQ(jobs.size(), 1u);
  for (int i = 0; i < 2; ++i) {
    const std::string document = jobs[0].View().Text(job::File(i));
    EXPECT_EQ(fs::path(Native(document)).parent_path(), fs::path(Native(PendingDir()))) << document;
    EXPECT_EQ(fs::path(document).extension(), ".FAX");
  }
  EXPECT_FALSE(fs::exists(ProductDir() + "/evil"));
  EXPECT_FALSE(fs::exists("/tmp/evil"));
}

TEST_F(MessageConversion, AdministrationRequestIsAnsweredNotFaxed) {
  Message message;
  message.recipients = {"0711 42@fax", "faxadmin@fax"};
  message.subject = "A=Price list";
  message.attachments = {{"prices.tif", "II*"}};
  Convert(message);
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

TEST_F(MessageConversion, MessageStillBeingWrittenWaitsForTheNextPass) {
  Message message;
  message.attachments = {{"a.tif", "II*"}};
  const std::string path = GatewayOut() + "/MSG00002.TMP";
  WriteFile(path, message.Bytes());
  // Held without sharing, as the mail gateway holds a file it is still writing.
  std::optional<platform::File> writer = platform::File::OpenExclusive(path);
  ASSERT_TRUE(writer.has_value());
  tick += 20000;
  std::array<unsigned char, kJobRecordSize> buffer{};
  host::Scan(0, buffer.data());
  EXPECT_TRUE(fs::exists(path));
  EXPECT_TRUE(PendingJobs().empty());

  writer.reset();
  tick += 20000;
  host::Scan(0, buffer.data());
  EXPECT_FALSE(fs::exists(path));
  EXPECT_EQ(PendingJobs().size(), 1u);
}

}  // namespace
}  // namespace tqv
