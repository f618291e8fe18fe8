// Attacks on the outgoing road by a mail sender who may fax: documents dressed up as job files or
// named to leave their directory, job records that name other files, and one message multiplied
// over many recipients.
#include <gtest/gtest.h>

#include <array>
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

class OutgoingSecurity : public testing::InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    WriteFile(ProductDir() + "/tqstring.ini",
              "[English]\r\nT422=Blocked\r\nT716=At most %d recipients\r\nT717=At most %d documents\r\n");
    fs::create_directories(PathOf("private"));
    fs::create_directories(ProductDir() + "/ATTACH");
    WriteFile(Victim(), "a file the library must not delete");
    WriteFile(Secret(), "a file the library must not fax");
    WriteFile(ProductDir() + "/ATTACH/00000001.tqv", Forged().Bytes());
    // 7489: the defaults with SendFaxes and BlockNumbers; the sender blocks 0900 numbers.
    AddFaxingSender("B_00000=0900\r\nA_00000=job," + ProductDir() + "\\ATTACH\\00000001.tqv\r\n", 7489);
    ASSERT_EQ(host::Initialise(0, ""), 0);
  }

  std::string Victim() const { return PathOf("victim.txt"); }
  std::string Secret() const { return PathOf("private/secret.txt"); }

  // A whole, valid job record that would fax the secret and, once accepted, delete the victim.
  JobRecord Forged(std::string_view faxNumber = "0711 666") const {
    JobRecord record = FaxJob("ann@example.com", faxNumber);
    JobRecordView job = record.View();
    job.SetText(job::JobFile, Victim());
    job.SetNumber(job::SkipQueue, 1u);
    job.SetNumber(job::FileCount, 1);
    job.SetText(job::File(0), Secret());
    return record;
  }

  void Drop(const std::string &body, const std::vector<std::pair<std::string, std::string>> &attachments,
            int recipients = 1) const {
    testing::GatewayMessage message{.recipients = {}, .body = body, .attachments = attachments};
    for (int i = 0; i < recipients; ++i)
      message.recipients.push_back("0711 " + std::to_string(1000 + i) + "@fax");
    WriteFile(GatewayOut() + "/MSG00001.TMP", message.Bytes());
  }

  // Scan calls as a fax service makes them, accepting every job handed out, until none is left or
  // `calls` have been made. The jobs handed out, in order.
  std::vector<JobRecord> ScanAndAccept(int calls = 50) {
    std::vector<JobRecord> handedOut;
    for (int i = 0; i < calls; ++i) {
      std::array<unsigned char, kJobRecordSize> buffer{};
      if (ScanLater(1, buffer.data()) != 1) break;
      handedOut.push_back(JobRecord::CopyOf(buffer.data()));
      host::ScannedEventAccepted(buffer.data());
    }
    return handedOut;
  }

  std::vector<std::string> PendingNames() const { return FileNames(Native(PendingDir())); }
};

// Documents whose names end like a job file, in any case or in a form Windows would shorten to
// one, are queued as plain documents; the forged records inside them never reach the fax service.
// Names that climb out of the work directory or name another one stay in the pending directory.
TEST_F(OutgoingSecurity, NoDocumentBecomesAJob) {
  const std::string forged(Forged().Bytes());
  Drop("::A=job\r\n", {{"x.TQV", forged},
                       {"y.tqv", forged},
                       {"z.tQvX", forged},
                       {"order.pdf", "%PDF"},
                       {"x.\\..\\..\\..\\evil", forged},
                       {"y./tmp/evil", forged}});

  const std::vector<JobRecord> handedOut = ScanAndAccept();
  ASSERT_EQ(handedOut.size(), 1u) << "only the message's own job";
  const JobRecordView job = handedOut[0].View();
  ASSERT_EQ(job.Number(job::FileCount), 7);
  std::vector<std::string> extensions;
  for (int i = 0; i < 7; ++i) {
    const fs::path document = Native(job.Text(job::File(i)));
    EXPECT_EQ(ReadFile(document.string()), i == 3 ? "%PDF" : forged);
    EXPECT_EQ(document.parent_path(), fs::path(Native(PendingDir()))) << document;
    extensions.push_back(document.extension().string());
  }
  EXPECT_EQ(extensions, (std::vector<std::string>{".FAX", ".FAX", ".FAX", ".pdf", ".FAX", ".FAX", ".FAX"}));
  EXPECT_TRUE(Exists(Victim()));
  EXPECT_TRUE(Exists(Secret()));
  EXPECT_FALSE(fs::exists(ProductDir() + "/evil") || fs::exists("/tmp/evil"));
}

// A record in the pending directory that names another file as its own is never handed out, not
// even to be refused for a blocked number, which would delete its documents and that file.
TEST_F(OutgoingSecurity, JobThatDoesNotNameItsOwnFileIsKeptAndNeverHandedOut) {
  const struct {
    const char *number;
    const char *file;
  } cases[] = {{"0711 666", "0000ABC1.TQV"}, {"0900 666", "0000ABC2.TQV"}};
  for (const auto &c : cases) {
    SCOPED_TRACE(c.number);
    const std::size_t eventsBefore = Events().size();
    const std::string stray = Native(PendingDir()) + "/" + c.file;
    ASSERT_TRUE(WriteJobFile(stray, Forged(c.number)));

    EXPECT_TRUE(ScanAndAccept().empty());
    EXPECT_TRUE(ScanAndAccept().empty());
    EXPECT_TRUE(Exists(stray)) << "nothing of the queue is lost";
    EXPECT_TRUE(Exists(Victim()));
    EXPECT_TRUE(Exists(Secret()));
    EXPECT_TRUE(Messages().empty()) << "no refusal report";
    ASSERT_EQ(Events().size(), eventsBefore + 1) << "one event per file, not per scan";
    EXPECT_NE(Events().back().find(c.file), std::string::npos) << Events().back();
    fs::remove(stray);
  }
}

// A message whose copies for all its recipients would pass the limit is refused before any job is
// written, with a report that says how far it may go; within the limit it is faxed as before.
TEST_F(OutgoingSecurity, OneMessageCannotFillThePendingDirectory) {
  const struct {
    const char *limit;  // thousands of bytes; nullptr: the default
    int recipients;
    std::size_t documentBytes;
    std::size_t jobs;
    const char *report;
  } cases[] = {
      {nullptr, 300, 1'000'000, 0, "At most 259 recipients"},
      {"1000", 20, 100'000, 0, "At most 9 recipients"},
      {"1000", 9, 100'000, 9, nullptr},
      {"1000", 1, 1'200'000, 0, "At most 0 documents"},
      {"0", 20, 100'000, 20, nullptr},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(::testing::Message() << (c.limit ? c.limit : "default") << " " << c.recipients);
    if (c.limit != nullptr) SetConfig("Fax Attachments", "MaxQueuedPerMessage", c.limit);
    for (const std::string &name : FileNames(GatewayIn()))
      fs::remove(GatewayIn() + "/" + name);

    Drop("", {{"big.tif", std::string(c.documentBytes, 'd')}}, c.recipients);
    ScanLater();

    EXPECT_EQ(PendingJobs().size(), c.jobs);
    const std::vector<std::string> messages = Messages();
    if (c.report == nullptr) {
      EXPECT_TRUE(messages.empty());
    } else {
      ASSERT_EQ(messages.size(), 1u);
      EXPECT_NE(messages[0].find(c.report), std::string::npos) << messages[0].substr(0, 600);
      EXPECT_TRUE(PendingNames().empty()) << "not one copy is left behind";
    }
    for (const std::string &name : PendingNames())
      fs::remove(Native(PendingDir()) + "/" + name);
  }
}

// A message the conversion gives up before its end goes without a report, since it may not even
// name its sender whole; an operator still hears of each one, in one event line however the
// sender spelled the subject.
TEST_F(OutgoingSecurity, EveryMessageGivenUpLeavesOneWarning) {
  std::string manyRecipients;
  for (int i = 0; i < 1024; ++i)
    manyRecipients += "RCPT TO:" + std::to_string(1000 + i) + "\r\n";
  const struct {
    const char *what;
    std::string items;
    const char *reason;
  } cases[] = {
      {"malformed attachment line", "----beginattach:a.tif:0\r\n", "attachment line is malformed"},
      {"body length past the end", "----beginbody:999\r\nshort\r\n", "could not be extracted"},
      {"1024 recipients", manyRecipients, "more recipients or attachments"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    WriteFile(GatewayOut() + "/MSG00001.TMP",
              "MAIL FROM:ann@example.com\r\nRCPT TO:0711 1@fax\r\nSubject:Order\nforged\r\n" + c.items);
    const std::size_t eventsBefore = Events().size();
    EXPECT_EQ(ScanLater(1), 0);
    EXPECT_TRUE(Messages().empty());
    EXPECT_FALSE(Exists(GatewayOut() + "/MSG00001.TMP"));
    ASSERT_EQ(Events().size(), eventsBefore + 1);
    EXPECT_NE(Events().back().find("Order forged' is deleted unconverted"), std::string::npos)
        << Events().back();
    EXPECT_NE(Events().back().find(c.reason), std::string::npos) << Events().back();
  }
}

}  // namespace
}  // namespace tqv
