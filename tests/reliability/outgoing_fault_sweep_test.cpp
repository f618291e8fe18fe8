// Every file operation of the outgoing road fails in turn: a message or text file may go only when
// its jobs, its error report or an event naming it are there, and every job left is whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <set>
#include <string>

#include "common/job_record.h"
#include "host/entry_points.h"
#include "support/fault_sweep.h"
#include "support/gateway_message.h"

namespace tqv {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kDocument = "%PDF-1.4 price list";
constexpr std::string_view kText = "Please fax this.\r\n";

// A message to one number by its address and one more by an option line, with one document.
std::string GatewayMessage(const std::string &sender) {
  return testing::GatewayMessage{.sender = sender,
                                 .subject = "Price list",
                                 .body = "::Bob,0711 42\r\n" + std::string(kText),
                                 .attachments = {{"prices.pdf", std::string(kDocument)}}}
      .Bytes();
}

class OutgoingFaultSweep : public testing::FaultSweepTest {
 protected:
  void InstallSender() const {
    AddFaxingSender();
    Install("T706=Sender may not fax\r\nT901=Failed: \r\n", "");
  }
  // The error reports of gateway-in that are whole: a fault may change what a report says (an
  // option file that cannot be read is reported as such), but a whole one ends with the document.
  std::size_t WholeReports() const {
    const std::string documentBlock =
        ":" + std::to_string(kDocument.size()) + "\r\n" + std::string(kDocument) + "\r\n----endattach\r\n";
    const std::map<std::string, std::string> reports = FilesIn(GatewayIn());
    return static_cast<std::size_t>(std::count_if(reports.begin(), reports.end(), [&](const auto &report) {
      return report.second.ends_with(documentBlock);
    }));
  }
  // A report that is there but not whole, or none where one is due, must be told as an event.
  void ExpectReportWholeOrAnEvent(std::size_t due, const std::string &sender) const {
    if (WholeReports() < due || WholeReports() < FilesIn(GatewayIn()).size()) {
      EXPECT_TRUE(EventNames({sender, "Price list"}) || EventNames({"MSG00001.TMP", "deleted"}))
          << "a report is missing or not whole, and no event\n"
          << EventList();
    }
  }

  // The whole jobs of the pending directory by recipient; a job file that is not a whole record
  // is allowed only when the disk refused its write and then its removal too.
  std::map<std::string, JobRecord> WholeJobs(const testing::FaultPlan &plan) const {
    std::map<std::string, JobRecord> jobs;
    for (const auto &[name, bytes] : FilesIn(PendingDir())) {
      if (!name.ends_with(".TQV")) continue;
      const bool whole =
          bytes.size() == kJobRecordSize && JobRecord::CopyOf(bytes.data()).View().HasValidHeader();
      if (whole) {
        const JobRecord job = JobRecord::CopyOf(bytes.data());
        jobs.emplace(job.View().Text(job::RecipientNumber), job);
      } else {
        EXPECT_TRUE(plan.toTheEnd && bytes.empty()) << "damaged job file " << name;
      }
    }
    return jobs;
  }

  // The documents the jobs name: each holds what it should, or is missing because its copy failed.
  // That copy is the one file operation that makes it, so under a single fault it may be the only
  // thing missing in the run. No two jobs name the same file: the first to finish would delete it.
  // `baseline` takes the recipients of the run without faults; whether every one has its job here.
  bool ExpectDocumentsWhole(const testing::FaultPlan &plan, const std::map<std::string, JobRecord> &jobs,
                            std::set<std::string> &baseline, std::size_t &missing) const {
    std::vector<std::pair<std::string, std::string_view>> named;
    for (const auto &[recipient, record] : jobs) {
      if (!plan.Faulted()) baseline.insert(recipient);
      const JobRecordView job = record.View();
      if (!job.Text(job::MessageTextFile).empty()) named.emplace_back(job.Text(job::MessageTextFile), kText);
      for (int i = 0; i < job.UsableFileCount(); ++i)
        named.emplace_back(job.Text(job::File(i)), job.IsTextFileJob() ? kText : kDocument);
    }
    std::set<std::string> paths;
    missing = 0;
    for (const auto &[path, expected] : named) {
      EXPECT_TRUE(paths.insert(path).second) << "two jobs name " << path;
      if (!Exists(Native(path))) {
        ++missing;
        continue;
      }
      EXPECT_EQ(ReadFile(Native(path)), expected) << path;
    }
    const bool allJobs = std::all_of(baseline.begin(), baseline.end(),
                                     [&](const std::string &recipient) { return jobs.contains(recipient); });
    EXPECT_TRUE(missing == 0 || (!plan.toTheEnd && missing == 1 && allJobs))
        << missing << " documents missing";
    return allJobs;
  }
};

TEST_F(OutgoingFaultSweep, AMessageIsNeverGoneWithoutItsJobsItsReportOrAnEvent) {
  std::set<std::string> recipients;
  int runsWithFailedCopy = 0;
  Sweep({
      [&] {
        InstallSender();
        WriteFile(GatewayOut() + "/MSG00001.TMP", GatewayMessage("ann@example.com"));
      },
      [&] { Scan(); },
      [&](const testing::FaultPlan &plan) {
        const std::map<std::string, JobRecord> jobs = WholeJobs(plan);
        const std::size_t reports = WholeReports();
        if (!plan.Faulted()) {
          ASSERT_EQ(jobs.size(), 2u);
          ASSERT_EQ(reports, 0u);
        }
        std::size_t missing = 0;
        const bool allJobs = ExpectDocumentsWhole(plan, jobs, recipients, missing);
        runsWithFailedCopy += missing > 0 ? 1 : 0;
        ExpectReportWholeOrAnEvent(0, "ann@example.com");
        if (!Exists(GatewayOut() + "/MSG00001.TMP")) {
          // A message the reader could not open or read is named by its file: its sender may be unknown.
          EXPECT_TRUE(allJobs || reports > 0 || EventNames({"ann@example.com", "Price list"}) ||
                      EventNames({"MSG00001.TMP", "deleted"}))
              << jobs.size() << " of " << recipients.size() << " jobs, no report and no event\n"
              << EventList();
        }
      },
  });
  // The one way a job names a missing document: the copy made for it failed.
  EXPECT_GT(runsWithFailedCopy, 0);
  std::printf("[ sweep    ] runs in which a job names a document whose copy failed: %d\n",
              runsWithFailedCopy);
}

TEST_F(OutgoingFaultSweep, AMessageThatCannotBeFaxedIsNeverGoneWithoutItsReportOrAnEvent) {
  Sweep({
      [&] {
        InstallSender();
        WriteFile(GatewayOut() + "/MSG00001.TMP", GatewayMessage("eve@example.com"));
      },
      [&] { Scan(); },
      [&](const testing::FaultPlan &plan) {
        if (!plan.Faulted()) {
          ASSERT_EQ(WholeReports(), 1u);
        }
        EXPECT_TRUE(WholeJobs(plan).empty());
        if (!Exists(GatewayOut() + "/MSG00001.TMP")) ExpectReportWholeOrAnEvent(1, "eve@example.com");
      },
  });
}

TEST_F(OutgoingFaultSweep, JobsOfTwoMessagesInOnePassNeverShareACopy) {
  Sweep({
      [&] {
        InstallSender();
        WriteFile(GatewayOut() + "/MSG00001.TMP", GatewayMessage("ann@example.com"));
        WriteFile(GatewayOut() + "/MSG00002.TMP",
                  testing::GatewayMessage{
                      .recipients = {"0711 99"}, .subject = "Other", .body = "Another text.\r\n"}
                      .Bytes());
      },
      [&] { Scan(); },
      [&](const testing::FaultPlan &) {
        // A name a failed copy left free must not go to the other message's copy: the job would
        // fax a stranger's text, and lose it when the other job finishes.
        std::set<std::string> named;
        for (const auto &[recipient, record] : WholeJobs(testing::FaultPlan{1, true})) {
          const std::string text = record.View().Text(job::MessageTextFile);
          EXPECT_TRUE(named.insert(text).second) << "two jobs name " << text;
          if (Exists(Native(text))) {
            EXPECT_EQ(ReadFile(Native(text)), recipient == "0711 99" ? "Another text.\r\n" : kText);
          }
        }
      },
  });
}

TEST_F(OutgoingFaultSweep, ATextFileIsNeverGoneWithoutItsJobsItsErrorFileOrAnEvent) {
  std::set<std::string> numbers;
  Sweep({
      [&] {
        fs::create_directories(PathOf("text"));
        WriteFile(PathOf("text/ORDER.TXT"), "::Ann,0711 1\r\n::Bob,0711 2\r\n" + std::string(kText));
        ASSERT_EQ(host::Initialise(1, PathOf("text").c_str()), 0);
      },
      [&] { Scan(); },
      [&](const testing::FaultPlan &plan) {
        const std::map<std::string, JobRecord> jobs = WholeJobs(plan);
        if (!plan.Faulted()) {
          ASSERT_EQ(jobs.size(), 2u);
        }
        std::size_t missing = 0;
        const bool allJobs = ExpectDocumentsWhole(plan, jobs, numbers, missing);
        if (!Exists(PathOf("text/ORDER.TXT"))) {
          EXPECT_TRUE(allJobs || Exists(PathOf("text/ORDER.ERR")) || EventNames({"ORDER.TXT"}))
              << jobs.size() << " of " << numbers.size() << " jobs, and no event\n"
              << EventList();
        }
      },
  });
}

}  // namespace
}  // namespace tqv
