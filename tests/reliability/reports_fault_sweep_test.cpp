// Every file operation of a finished job's road fails in turn: the delivery report, the JFAX
// hand-off, the text-job result file, the send log and the archive copies are there whole or not at
// all, where a reader would take them.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <map>
#include <string>

#include "common/job_record.h"
#include "host/entry_points.h"
#include "support/fault_sweep.h"

namespace tqv {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kDocument = "II* fax page";
constexpr std::string_view kOrderText = "::Bob,0711 42\r\nPlease fax this.\r\n";

class ReportsFaultSweep : public testing::FaultSweepTest {
 protected:
  // A delivered job of ann's, who wants her documents back, with its text and one document.
  JobRecord PrepareFinishedJob(std::string_view tag) const {
    Install("T900=OK: \r\nT901=Failed: \r\nT902=fax to\r\n",
            "[Recipient List]\r\nann@example.com=Ann\r\n[Recipients Properties]\r\nann@example.com=9473\r\n");
    fs::create_directories(PathOf("archive"));
    WriteFile(Native(PendingDir() + "\\00000001.txt"), "Please fax this.\r\n");
    WriteFile(Native(PendingDir() + "\\00000002.pdf"), kDocument);

    JobRecord record = JobRecord::WithTag(tag);
    JobRecordView job = record.View();
    job.SetText(job::SenderEmail, "ann@example.com");
    job.SetText(job::SenderName, "Ann");
    job.SetText(job::Subject, "Price list");
    job.SetText(job::RecipientName, "Bob");
    job.SetText(job::RecipientNumber, "0711 42");
    job.SetText(job::FaxNumber, tag == kJfaxJobTag ? "071142@jfax.invalid" : "071142");
    job.SetText(job::MessageTextFile, PendingDir() + "\\00000001.txt");
    job.SetNumber(job::FileCount, 1);
    job.SetText(job::File(0), PendingDir() + "\\00000002.pdf");
    job.SetNumber(job::Status, 2u);
    job.SetText(job::StatusInfo, "Delivered");
    job.SetNumber(job::ArchiveSent, 1u);
    job.SetText(job::ArchiveDir, PathOf("archive"));
    return record;
  }

  // Hands the job back as the fax service does, from a buffer of its own.
  static void HandBack(int (*entry)(void *), const JobRecord &job) {
    std::array<unsigned char, kJobRecordSize> buffer{};
    job.CopyTo(buffer.data());
    entry(buffer.data());
  }
};

TEST_F(ReportsFaultSweep, DeliveryReportSendLogAndArchiveAreWholeOrAbsent) {
  JobRecord job;
  std::string sendLog;
  Sweep({
      [&] { job = PrepareFinishedJob(kFaxJobTag); },
      [&] { HandBack(host::FaxSent, job); },
      [&](const testing::FaultPlan &plan) {
        if (!plan.Faulted()) {
          sendLog = ReadFile(ProductDir() + "/sendlog.txt");
          ASSERT_EQ(FilesIn(GatewayIn()).size(), 1u);
          ASSERT_FALSE(sendLog.empty());
        }
        // A report may lack a document it could not read (the sender has it), never be cut.
        ExpectOnlyWholeMessages(plan);
        ExpectWholeLogLines(ReadFile(ProductDir() + "/sendlog.txt"), sendLog);
        for (const auto &[name, bytes] : FilesIn(PathOf("archive"))) {
          EXPECT_EQ(bytes, kDocument) << name;
        }
      },
  });
}

TEST_F(ReportsFaultSweep, JfaxHandOffIsWholeOrAbsent) {
  JobRecord job;
  std::map<std::string, std::string> messages;
  Sweep({
      [&] { job = PrepareFinishedJob(kJfaxJobTag); },
      [&] { HandBack(host::JfaxReady, job); },
      [&](const testing::FaultPlan &plan) {
        if (!plan.Faulted()) {
          messages = FilesIn(GatewayIn());
          ASSERT_EQ(messages.size(), 1u);
        }
        ExpectOnlyWholeMessages(plan);
        // The documents are deleted after the hand-off: the fax goes out whole, or an event tells.
        const std::map<std::string, std::string> sent = FilesIn(GatewayIn());
        if (sent.size() != 1 || !SameShape(sent.begin()->second, messages.begin()->second)) {
          EXPECT_TRUE(EventNames({"ann@example.com", "071142@jfax.invalid", "Price list"}))
              << "the JFAX fax did not go out whole, and no event\n"
              << EventList();
        }
      },
  });
}

TEST_F(ReportsFaultSweep, TextJobResultFileIsWholeOrAbsent) {
  JobRecord job;
  std::string result;
  Sweep({
      [&] {
        job = PrepareFinishedJob(kFaxJobTag);
        job.View().SetText(job::SenderEmail, "TEXTFILE");
        fs::create_directories(PathOf("text"));
        job.View().SetText(job::CustomString, PathOf("text") + "/ORDER.TXT");
        WriteFile(PathOf("text/ORDER.TMP"), kOrderText);
      },
      [&] { HandBack(host::FaxSent, job); },
      [&](const testing::FaultPlan &plan) {
        if (!plan.Faulted()) {
          result = ReadFile(PathOf("text/ORDER.OK"));
          ASSERT_FALSE(result.empty());
        }
        // A working copy that cannot be read leaves the report alone, as a missing one does. A
        // result the disk refused to finish and then to remove stays as it is.
        const std::string report = result.substr(0, result.size() - kOrderText.size());
        if (Exists(PathOf("text/ORDER.OK"))) {
          const std::string written = ReadFile(PathOf("text/ORDER.OK"));
          EXPECT_TRUE(written == result || written == report || plan.toTheEnd) << written;
        }
      },
  });
}

}  // namespace
}  // namespace tqv
