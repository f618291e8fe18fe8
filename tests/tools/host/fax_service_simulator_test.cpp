// The simulated fax service against a scripted library: the calling order it owes the library,
// the result fields it fills in, that a job put back can never keep a cycle going, and the
// received faxes that requests in a directory ask for.
#include "tqv/host/fax_service_simulator.h"

#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <sstream>
#include <vector>

#include "common/job_record.h"
#include "platform/clock.h"
#include "platform/file.h"
#include "tools/shared/receive_dir_test.h"

namespace tqv::tool {
namespace {

// What the scripted library hands out and what it is given back.
struct ScriptedLibrary {
  std::deque<JobRecord> queue;
  std::vector<std::string> calls;
  std::vector<JobRecord> sent, jfax;
  int storedAgain = 0;
};

ScriptedLibrary *library = nullptr;  // the test's own, while it runs

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

int HandedBack(const std::string &call, std::vector<JobRecord> &into, void *job) {
  library->calls.push_back(call + " " + JobFileOf(job));
  into.push_back(JobRecord::CopyOf(job));
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
    entries_.faxSent = [](void *job) { return HandedBack("sent", library->sent, job); };
    entries_.jfaxReady = [](void *job) { return HandedBack("jfax", library->jfax, job); };
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

// A skip-queue job goes whatever its schedule; a job not yet due goes back once, and the cycle
// must not take it again, or it would never end.
TEST_F(ScanCycle, EachJobIsHandedBackOnceAndAJobPutBackWaitsForTheNextCycle) {
  JobRecord skipQueue = FutureJob("S.TQV");
  skipQueue.View().SetNumber(job::SkipQueue, 1u);
  script_.queue = {Job(kFaxJobTag, "A.TQV", 3), FutureJob("F.TQV"), Job(kJfaxJobTag, "B.TQV"), skipQueue};
  const CycleCounts counts = Run();

  EXPECT_EQ(script_.calls,
            (std::vector<std::string>{"scan", "accept C:\\PENDING\\A.TQV", "sent C:\\PENDING\\A.TQV", "scan",
                                      "accept C:\\PENDING\\F.TQV", "pending C:\\PENDING\\F.TQV", "scan",
                                      "accept C:\\PENDING\\B.TQV", "jfax C:\\PENDING\\B.TQV", "scan",
                                      "accept C:\\PENDING\\S.TQV", "sent C:\\PENDING\\S.TQV", "scan"}));
  ASSERT_EQ(script_.sent.size(), 2u);
  const JobRecordView sent = script_.sent[0].View();
  EXPECT_EQ(sent.Number(job::Status), 2u);
  EXPECT_EQ(sent.Text(job::RemoteId), "LOOPBACK");
  EXPECT_EQ(sent.Number(job::TotalPages), 3u);
  EXPECT_EQ(sent.Number(job::PagesTransferred), 3u);
  ASSERT_EQ(script_.jfax.size(), 1u);
  EXPECT_EQ(script_.jfax[0].View().Number(job::TotalPages), 1u) << "a job without documents still has a page";
  EXPECT_EQ(counts.scanned, 4);
  EXPECT_EQ(counts.sent, 2);
  EXPECT_EQ(counts.jfax, 1);
  EXPECT_EQ(counts.pending, 1);
  EXPECT_NE(output_.str().find("scan: job A.TQV tag KVDTQVOUT to 089123 (3 documents)\n"), std::string::npos)
      << output_.str();
  EXPECT_NE(output_.str().find("back in queue as AGAIN1.TQV"), std::string::npos) << output_.str();
  ASSERT_EQ(script_.queue.size(), 1u) << "the job put back stays in the queue, not taken a second time";

  script_.calls.clear();
  Run();
  EXPECT_EQ(script_.calls[1], "accept C:\\PENDING\\AGAIN1.TQV") << "the next cycle takes it again";
}

using ReceiveRequests = testing::ReceiveDirTest;

TEST_F(ReceiveRequests, EachIsPlayedOnceWhenItsWriterLetsGoAndBrokenOnesAreRemoved) {
  WriteFile(PathOf("receive/A.TIF"), "II*image A");
  WriteFile(PathOf("receive/A.RCV"), "Image=A.TIF\r\nCsid=+49 89 1\r\n");
  WriteFile(PathOf("receive/B.RCV"), "Image=MISSING.TIF\r\n");
  WriteFile(PathOf("receive/C.TIF"), "II*image C");
  WriteFile(PathOf("receive/C.RCV"), "Csid=held\r\nImage=C.TIF\r\n");
  std::optional<platform::File> held = platform::File::OpenExclusive(PathOf("receive/C.RCV"));
  ASSERT_TRUE(held.has_value());

  EXPECT_EQ(1, Play());
  ASSERT_EQ(1u, faxes_.size());
  EXPECT_EQ(std::make_pair(std::string("+49 89 1"), std::string("II*image A")), faxes_[0]);
  EXPECT_FALSE(Exists(PathOf("receive/A.RCV")) || Exists(PathOf("receive/A.TIF")));
  EXPECT_FALSE(Exists(PathOf("receive/B.RCV"))) << "a request that cannot be played must not come back";
  EXPECT_TRUE(Exists(PathOf("receive/C.RCV")));

  held.reset();
  EXPECT_EQ(1, Play());
  EXPECT_EQ("held", faxes_.back().first);
  EXPECT_EQ(0, Play());
  EXPECT_TRUE(std::filesystem::is_empty(PathOf("receive")));
}

}  // namespace
}  // namespace tqv::tool
