// The built tqvfaxd against the built library in a temporary installation: a job with a cover
// page, a message text and a PDF goes out over the loopback line, is reported back with the
// session's results, and comes in again as a received fax that the library routes by the station
// identifier and by a word recognised on the PDF's page.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "common/job_record.h"
#include "faxd/child_process.h"
#include "platform/clock.h"
#include "support/installation.h"
#include "support/platform_backend.h"

namespace tqv::faxd {
namespace {

constexpr const char *kStation = "+49 89 5550100";

class FaxService : public tqv::testing::InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    WriteFile(ProductDir() + "/tqvadmin.ini", tqv::testing::Crlf("[Recipient List]\n"
                                                                 "anna@example.com=Anna Berger\n"
                                                                 "bob@example.com=Bob\n"
                                                                 "carol@example.com=Carol\n"
                                                                 "dave@example.com=Dave\n"
                                                                 "[Recipients Properties]\n"
                                                                 "anna@example.com=1\n"
                                                                 "bob@example.com=0\n"
                                                                 "carol@example.com=0\n"
                                                                 "dave@example.com=2\n"
                                                                 "[Routing]\n"
                                                                 "CSID_00000=carol@example.com," +
                                                                 std::string(kStation) +
                                                                 "\n"
                                                                 "OCRKW_00000=bob@example.com,PINEAPPLE\n"));
    std::filesystem::create_directories(GatewayOut() + "/PENDING");
  }

  // A document of the job in the pending directory, by its Windows-form name.
  std::string Document(const std::string &name, const std::string &bytes) const {
    WriteFile(GatewayOut() + "/PENDING/" + name, bytes);
    return PendingDir() + "\\" + name;
  }

  std::string MakePdf(const std::string &name, const std::string &postScript) const {
    WriteFile(PathOf("source.ps"), postScript);
    const ChildResult made =
        RunChild({"gs", "-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", "-sDEVICE=pdfwrite",
                  "-sOutputFile=" + GatewayOut() + "/PENDING/" + name, PathOf("source.ps")},
                 60);
    EXPECT_EQ(made.exitCode, 0) << made.output;
    return PendingDir() + "\\" + name;
  }

  void WriteJob(const std::string &name, const std::vector<std::string> &files, const std::string &cover = {},
                const std::string &message = {}) const {
    JobRecord record = JobRecord::WithTag(kFaxJobTag);
    JobRecordView job = record.View();
    job.SetText(job::JobFile, PendingDir() + "\\" + name);
    job.SetText(job::SenderEmail, "anna@example.com");
    job.SetText(job::SenderName, "Anna Berger");
    job.SetText(job::RecipientName, "Sales Office");
    job.SetText(job::FaxNumber, "5550199");
    job.SetText(job::Subject, "Order");
    job.SetText(job::FaxHeader, "HOFMANN SALES");
    job.SetNumber(job::FineResolution, std::uint32_t{1});
    job.SetText(job::Party(job::RecipientParty, PartyField::Company), "Hofmann GmbH");
    job.SetText(job::CoverPageFile, cover);
    job.SetText(job::MessageTextFile, message);
    for (std::size_t i = 0; i < files.size(); ++i)
      job.SetText(job::File(static_cast<int>(i)), files[i]);
    job.SetNumber(job::FileCount, static_cast<std::int32_t>(files.size()));
    ASSERT_TRUE(WriteJobFile(GatewayOut() + "/PENDING/" + name, record));
  }

  tqv::testing::ProgramOutcome RunOnce(std::vector<std::string> extra = {}) const {
    std::vector<std::string> arguments = {
        "--once",           "--due",  "--library",   TQV_LIBRARY_PATH, "--spool-dir", PathOf("spool"),
        "--station-id",     kStation, "--answer-id", "+1 555 0199",    "--pictures",  PathOf("pictures"),
        "--attach-ocr-text"};
    arguments.insert(arguments.end(), extra.begin(), extra.end());
    return tqv::testing::RunProgram(TQV_FAXD_PATH, arguments, Dir());
  }

  // The message of the gateway-in directory addressed to `user`; empty when none.
  std::string MessageTo(const std::string &user) const {
    for (const std::string &message : Messages())
      if (message.find("RCPT TO:" + user + "\r\n") != std::string::npos) return message;
    return {};
  }
};

TEST_F(FaxService, AJobGoesOutAndComesBackInRoutedByStationAndRecognisedWord) {
  if (!ProgramAvailable("tesseract")) GTEST_SKIP() << "tesseract is not installed";
  const std::string cover =
      Document("0000C0VR.RTF",
               "{\\rtf1\\ansi {\\b FAX} to <TO_NAME>, <TO_COMPANY>\\par from <FROM_NAME>\\par "
               "Subject: <SUBJECT>\\par Pages: <PAGES>}");
  const std::string message =
      Document("00000001.txt", "Dear Sir or Madam,\r\n\r\nplease find our order attached.\r\n");
  const std::string pdf = MakePdf("00000002.PDF",
                                  "%!PS\n/Helvetica findfont 36 scalefont setfont\n"
                                  "72 650 moveto (PINEAPPLE) show showpage\n");
  WriteJob("00000003.TQV", {pdf}, cover, message);

  const tqv::testing::ProgramOutcome run = RunOnce();
  ASSERT_EQ(run.exitCode, 0) << run.err << run.out;
  EXPECT_NE(run.out.find("call: job 00000003 to 5550199: delivered, 3 pages at 14400 bit/s"),
            std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find("receive: 3 pages from \"+49 89 5550100\""), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("done: 1 job: 1 delivered, 0 failed, 0 to JFAX, 0 back in queue; 1 fax received"),
            std::string::npos)
      << run.out;

  // The delivery report carries the session's results.
  const std::string report = MessageTo("anna@example.com");
  EXPECT_NE(report.find("FAX-Status:2\r\n"), std::string::npos) << report;
  EXPECT_NE(report.find("FAX-PagesTransferred:3\r\n"), std::string::npos) << report;

  // Carol by the station identifier, Bob by the word on the PDF's page; Dave takes only faxes
  // nobody else was routed.
  const std::string received = MessageTo("bob@example.com");
  ASSERT_FALSE(received.empty()) << run.out;
  EXPECT_NE(received.find("RCPT TO:carol@example.com\r\n"), std::string::npos);
  EXPECT_EQ(received.find("RCPT TO:dave@example.com\r\n"), std::string::npos);
  // The recognised text went with it: the cover page's fields were filled in.
  EXPECT_NE(received.find("Hofmann GmbH"), std::string::npos);
  EXPECT_NE(received.find("Pages: 3"), std::string::npos);
  EXPECT_NE(received.find("PINEAPPLE"), std::string::npos);

  // Pictures of every page, both ways; the job's documents and the spool are cleaned up.
  for (const char *side : {"sent", "received"})
    for (int page = 1; page <= 3; ++page)
      EXPECT_TRUE(Exists(PathOf("pictures/") + side + "-00000003-" + std::to_string(page) + ".png"))
          << side << " " << page;
  EXPECT_FALSE(Exists(GatewayOut() + "/PENDING/00000002.PDF"));
  EXPECT_TRUE(std::filesystem::is_empty(PathOf("spool")));
}

TEST_F(FaxService, FailuresAreReportedBackWithTheirResultCode) {
  struct Case {
    std::vector<std::string> arguments;
    std::string document;
    const char *status;
    const char *info;
  };
  const std::vector<Case> cases = {
      {{"--far-end", "busy", "--retries", "0"}, "Hello\r\n", "FAX-Status:0", "busy"},
      {{"--far-end", "refusing"}, "Hello\r\n", "FAX-Status:1", "Failed on page 1 of 1"},
      {{},
       std::string("PK\x03\x04\x14\0\x06\0 word/document.xml", 26),
       "FAX-Status:0",
       "Not sent: document 1 (0000D0C1.DOC) is of a kind that cannot be faxed"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.info);
    for (const std::string &message : Messages())
      (void)message;
    std::filesystem::remove_all(GatewayIn());
    std::filesystem::create_directories(GatewayIn());
    WriteJob("0000D0C2.TQV", {Document("0000D0C1.DOC", c.document)});
    std::vector<std::string> arguments = c.arguments;
    arguments.push_back("--no-ocr");
    const tqv::testing::ProgramOutcome run = RunOnce(arguments);
    ASSERT_EQ(run.exitCode, 0) << run.err << run.out;
    EXPECT_NE(run.out.find("1 failed"), std::string::npos) << run.out;
    const std::string report = MessageTo("anna@example.com");
    EXPECT_NE(report.find(std::string(c.status) + "\r\n"), std::string::npos) << report;
    EXPECT_NE(report.find(c.info), std::string::npos) << report;
    // Nothing came in, so nobody got a fax.
    EXPECT_TRUE(MessageTo("bob@example.com").empty());
  }
}

// The next job is rendered while the last one is on the line: every job still comes back once,
// with its own results, and one that cannot be rendered between two others holds up neither.
TEST_F(FaxService, JobsOfOneCycleEachComeBackWithTheirOwnResults) {
  WriteJob("00000011.TQV", {Document("00000012.TXT", "One\r\n")});
  WriteJob("00000013.TQV", {Document("00000014.DOC", std::string("PK\x03\x04\x14\0\x06\0", 8))});
  WriteJob("00000015.TQV", {Document("00000016.TXT", "Two\fpages\r\n")});
  const tqv::testing::ProgramOutcome run = RunOnce({"--no-ocr"});
  ASSERT_EQ(run.exitCode, 0) << run.err << run.out;
  EXPECT_NE(run.out.find("done: 3 jobs: 2 delivered, 1 failed, 0 to JFAX, 0 back in queue; 2 faxes received"),
            std::string::npos)
      << run.out;
  std::vector<std::string> reports;
  for (const std::string &message : Messages())
    if (message.find("RCPT TO:anna@example.com\r\n") != std::string::npos) reports.push_back(message);
  ASSERT_EQ(reports.size(), 3u);
  std::string pages;
  for (const std::string &report : reports) {
    const std::size_t at = report.find("FAX-PagesTransferred:");
    pages += report.substr(at + 21, report.find('\r', at) - at - 21);
  }
  // Each report carries its own job's pages: 1, 0 (not rendered) and 2, in some order.
  std::sort(pages.begin(), pages.end());
  EXPECT_EQ(pages, "012");
  EXPECT_TRUE(std::filesystem::is_empty(PathOf("spool")));
}

// A call that reaches no fax machine is tried again later: the job goes back into the queue with
// its try counted and its time set, and only the last try is reported.
TEST_F(FaxService, ABusyLineIsTriedAgainThenReported) {
  WriteJob("00000021.TQV", {Document("00000022.TXT", "Hello\r\n")});
  const std::int64_t before = platform::CurrentTime();
  const tqv::testing::ProgramOutcome first =
      RunOnce({"--far-end", "busy", "--retries", "2", "--retry-delay", "600", "--no-ocr"});
  ASSERT_EQ(first.exitCode, 0) << first.err << first.out;
  EXPECT_NE(first.out.find("Not sent: the line is busy; try 1 of 2 at "), std::string::npos) << first.out;
  EXPECT_NE(first.out.find("0 failed, 0 to JFAX, 1 back in queue"), std::string::npos) << first.out;
  EXPECT_TRUE(MessageTo("anna@example.com").empty());
  std::vector<JobRecord> queued = PendingJobs();
  ASSERT_EQ(queued.size(), 1u);
  JobRecordView again = queued[0].View();
  EXPECT_EQ(again.Number(job::NumRetries), 1u);
  EXPECT_GE(again.Number(job::ScheduledTime), before + 600);
  EXPECT_LE(again.Number(job::ScheduledTime), platform::CurrentTime() + 600);
  EXPECT_TRUE(Exists(GatewayOut() + "/PENDING/00000022.TXT"));

  // The last try, once it is due: reported as not sent, with the tries made.
  again.SetNumber(job::NumRetries, std::uint32_t{2});
  again.SetNumber(job::ScheduledTime, std::int32_t{0});
  ASSERT_TRUE(WriteJobFile(Native(again.Text(job::JobFile)), queued[0]));
  const tqv::testing::ProgramOutcome last = RunOnce({"--far-end", "busy", "--retries", "2", "--no-ocr"});
  ASSERT_EQ(last.exitCode, 0) << last.err << last.out;
  const std::string report = MessageTo("anna@example.com");
  EXPECT_NE(report.find("FAX-Status:0\r\n"), std::string::npos) << report;
  EXPECT_NE(report.find("FAX-NumRetries:2\r\n"), std::string::npos) << report;
  EXPECT_TRUE(PendingJobs().empty());
}

TEST_F(FaxService, AServiceThatCannotStartSaysWhy) {
  const tqv::testing::ProgramOutcome missing =
      tqv::testing::RunProgram(TQV_FAXD_PATH, {"--once", "--library", PathOf("none.so")}, Dir());
  EXPECT_EQ(missing.exitCode, 2);
  EXPECT_NE(missing.err.find("none.so"), std::string::npos);
  std::filesystem::remove(ProductDir() + "/tqstring.ini");
  const tqv::testing::ProgramOutcome refused = RunOnce();
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_NE(refused.err.find("S_Initialise failed"), std::string::npos) << refused.err;
  EXPECT_EQ(tqv::testing::RunProgram(TQV_FAXD_PATH, {"--far-end", "moon"}, Dir()).exitCode, 64);
}

}  // namespace
}  // namespace tqv::faxd
