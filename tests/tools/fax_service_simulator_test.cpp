// The simulated fax service against a scripted library: the calling order it owes the library,
// the result fields it fills in, and that a job put back can never keep a cycle going.
#include "tqv/fax_service_simulator.h"

#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <sstream>
#include <vector>

#include "common/job_record.h"
#include "platform/clock.h"

namespace tqv::tool {
namespace {

// What the scripted library hands out and what it is given back.
struct ScriptedLibrary {
  std::deque<JobRecord> queue;
  std::vector<std::string> calls;
  std::vector<JobRecord> sent, jfax;
  int storedAgain = 0;
};

ScriptedLibrary *library = nullptr;

std::string JobFileOf(void *job) {
  return JobRecordView(job).Text(job::JobFile);
}

// Like the real queue: scanning copies a job; only taking it over removes its file.
int Scan(std::int32_t, void *job) {
  library->calls.push_back("scan");
  if (library->queue.empty()) return 0;
  library->queue.front().CopyTo(job);
  return 1;
}

int Accepted(void *job) {
  library->calls.push_back("accept " + JobFileOf(job));
  std::erase_if(library->queue,
                [&](const JobRecord &queued) { return queued.View().Text(job::JobFile) == JobFileOf(job); });
  return 1;
}

int Sent(void *job) {
  library->calls.push_back("sent " + JobFileOf(job));
  library->sent.push_back(JobRecord::CopyOf(job));
  return 0;
}

int JfaxReady(void *job) {
  library->calls.push_back("jfax " + JobFileOf(job));
  library->jfax.push_back(JobRecord::CopyOf(job));
  return 0;
}

// Stores the job under a new name at the end of the queue.
int Pending(void *job) {
  library->calls.push_back("pending " + JobFileOf(job));
  JobRecordView(job).SetText(job::JobFile,
                             "C:\\PENDING\\AGAIN" + std::to_string(++library->storedAgain) + ".TQV");
  library->queue.push_back(JobRecord::CopyOf(job));
  return 0;
}

class ScanCycle : public ::testing::Test {
 protected:
  void SetUp() override {
    library = &script_;
    entries_.scan = Scan;
    entries_.scannedEventAccepted = Accepted;
    entries_.faxSent = Sent;
    entries_.jfaxReady = JfaxReady;
    entries_.faxPending = Pending;
    platform::SetCurrentTimeSource([] { return kNow; });
  }
  void TearDown() override {
    platform::SetCurrentTimeSource({});
    library = nullptr;
  }

  static JobRecord Job(std::string_view tag, const std::string &name, int documents = 0) {
    JobRecord record = JobRecord::WithTag(tag);
    JobRecordView job = record.View();
    job.SetText(job::JobFile, "C:\\PENDING\\" + name);
    job.SetText(job::FaxNumber, "089123");
    job.SetNumber(job::FileCount, documents);
    return record;
  }
  static JobRecord FutureJob(const std::string &name) {
    JobRecord record = Job(kFaxJobTag, name);
    record.View().SetNumber(job::ScheduledTime, static_cast<std::int32_t>(kNow + 60));
    return record;
  }

  CycleCounts Run(SimulatorOptions options = {}) {
    FaxServiceSimulator simulator(entries_, options, output_);
    return simulator.RunCycle();
  }

  static constexpr std::int64_t kNow = 1700000000;
  ScriptedLibrary script_;
  EntryPoints entries_;
  std::ostringstream output_;
};

TEST_F(ScanCycle, FaxJobIsSentAndJfaxJobHandedBackWithLoopbackResults) {
  script_.queue = {Job(kFaxJobTag, "A.TQV", 3), Job(kJfaxJobTag, "B.TQV")};
  const CycleCounts counts = Run();

  EXPECT_EQ(script_.calls,
            (std::vector<std::string>{"scan", "accept C:\\PENDING\\A.TQV", "sent C:\\PENDING\\A.TQV", "scan",
                                      "accept C:\\PENDING\\B.TQV", "jfax C:\\PENDING\\B.TQV", "scan"}));
  ASSERT_EQ(script_.sent.size(), 1u);
  const JobRecordView sent = script_.sent[0].View();
  EXPECT_EQ(sent.Number(job::Status), 2u);
  EXPECT_EQ(sent.Text(job::RemoteId), "LOOPBACK");
  EXPECT_EQ(sent.Number(job::TotalPages), 3u);
  EXPECT_EQ(sent.Number(job::PagesTransferred), 3u);
  ASSERT_EQ(script_.jfax.size(), 1u);
  EXPECT_EQ(script_.jfax[0].View().Number(job::TotalPages), 1u) << "a job without documents still has a page";
  EXPECT_EQ(counts.scanned, 2);
  EXPECT_EQ(counts.sent, 1);
  EXPECT_EQ(counts.jfax, 1);
  EXPECT_NE(output_.str().find("scan: job A.TQV tag KVDTQVOUT to 089123 (3 documents)\n"), std::string::npos)
      << output_.str();
}

TEST_F(ScanCycle, JobNotYetDueGoesBackOnceAndWaitsForTheNextCycle) {
  script_.queue = {FutureJob("A.TQV")};
  const CycleCounts counts = Run();

  EXPECT_EQ(script_.calls, (std::vector<std::string>{"scan", "accept C:\\PENDING\\A.TQV",
                                                     "pending C:\\PENDING\\A.TQV", "scan"}));
  EXPECT_EQ(counts.pending, 1);
  EXPECT_TRUE(script_.sent.empty());
  ASSERT_EQ(script_.queue.size(), 1u) << "the job put back stays in the queue, not taken a second time";
  EXPECT_NE(output_.str().find("back in queue as AGAIN1.TQV"), std::string::npos) << output_.str();

  script_.calls.clear();
  Run();
  EXPECT_EQ(script_.calls[1], "accept C:\\PENDING\\AGAIN1.TQV") << "the next cycle takes it again";
}

TEST_F(ScanCycle, SkipQueueJobIsSentWhateverItsSchedule) {
  JobRecord job = FutureJob("A.TQV");
  job.View().SetNumber(job::SkipQueue, 1u);
  script_.queue = {job};
  EXPECT_EQ(Run().sent, 1);
}

TEST_F(ScanCycle, EveryNthCallFailsAndJobsPutBackDoNotCount) {
  script_.queue = {Job(kFaxJobTag, "1.TQV", 2), FutureJob("F.TQV"), Job(kFaxJobTag, "2.TQV", 2),
                   Job(kFaxJobTag, "3.TQV"), Job(kFaxJobTag, "4.TQV")};
  const CycleCounts counts = Run({.dueJobsFlag = 1, .failEvery = 2});

  ASSERT_EQ(script_.sent.size(), 4u);
  const std::uint32_t statuses[] = {2, 3, 2, 3};
  for (std::size_t i = 0; i < 4; ++i)
    EXPECT_EQ(script_.sent[i].View().Number(job::Status), statuses[i]) << i;
  const JobRecordView failed = script_.sent[1].View();
  EXPECT_FALSE(failed.Text(job::StatusInfo).empty());
  EXPECT_EQ(failed.Number(job::PagesTransferred), 0u);
  EXPECT_EQ(failed.Number(job::TotalPages), 2u);
  EXPECT_EQ(counts.sent, 2);
  EXPECT_EQ(counts.failed, 2);
}

}  // namespace
}  // namespace tqv::tool
