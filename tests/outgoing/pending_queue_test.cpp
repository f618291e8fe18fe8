#include "outgoing/pending_queue.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <map>

#include "platform/clock.h"
#include "platform/file.h"
#include "support/installation.h"

namespace tqv {
namespace {

constexpr std::int64_t kNow = 1'700'000'000;

class PendingQueue : public testing::InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    std::filesystem::create_directories(PathOf("gw/out/PENDING"));
    platform::SetCurrentTimeSource([] { return kNow; });
  }

  // A fax job named `name` whose subject is its name, as the library writes it, stored; due unless
  // scheduled `delay` seconds from now. Changes to it are stored by Store.
  JobRecordView Job(const std::string &name, std::int64_t delay = 0) {
    JobRecordView job = (jobs[name] = JobRecord::WithTag(kFaxJobTag)).View();
    job.SetText(job::Subject, name);
    job.SetText(job::JobFile, PendingDir() + "\\" + name);
    if (delay != 0) job.SetNumber(job::ScheduledTime, static_cast<std::int32_t>(kNow + delay));
    Store(name);
    return job;
  }
  void Store(const std::string &name) {
    ASSERT_TRUE(WriteJobFile(PathOf("gw/out/PENDING/" + name), jobs[name]));
  }
  void Remove(const std::string &name) { std::filesystem::remove(PathOf("gw/out/PENDING/" + name)); }

  // The subject of the job selected, or "" when none was.
  std::string Select(std::int32_t dueJobsFlag) {
    output.fill(0xAA);
    if (!SelectPendingJob(dueJobsFlag, PendingDir(), output.data())) return "";
    return JobRecordView(output.data()).Text(job::Subject);
  }

  std::map<std::string, JobRecord> jobs;
  std::array<unsigned char, kJobRecordSize> output{};
};

TEST_F(PendingQueue, LastDueJobWinsAndTheNextCallTakesTheOther) {
  EXPECT_EQ(Select(1), "");
  Job("A.TQV");
  Job("B.TQV").SetNumber(job::ScheduledTime, static_cast<std::int32_t>(kNow));
  Store("B.TQV");
  EXPECT_EQ(Select(1), "B.TQV");
  EXPECT_EQ(std::string_view(reinterpret_cast<char *>(output.data()), kJobRecordSize), jobs["B.TQV"].Bytes());
  EXPECT_EQ(Select(1), "B.TQV") << "the queue never removes a job itself";
  Remove("B.TQV");
  EXPECT_EQ(Select(1), "A.TQV");
  EXPECT_EQ(Select(0), "") << "due jobs wait while the host does not want them";
}

TEST_F(PendingQueue, SkipQueueAndEarlyJobsIgnoreScheduleAndFlag) {
  Job("A.TQV", 86400).SetText(job::CoverPageFile, "C:\\COVER\\FRONT.CVF");
  Store("A.TQV");
  EXPECT_EQ(Select(0), "A.TQV") << "an early job scheduled tomorrow";

  Job("B.TQV", 86400).SetNumber(job::SkipQueue, 1u);
  Store("B.TQV");
  Job("C.TQV");
  EXPECT_EQ(Select(0), "B.TQV");
  EXPECT_EQ(Select(1), "B.TQV") << "a skip-queue job ends the search at once";
}

TEST_F(PendingQueue, EarlyJobsAfterADueJobAreJudgedByTheirSchedule) {
  Job("A.TQV");
  JobRecordView late = Job("B.TQV", 60);
  late.SetNumber(job::FileCount, 1);
  late.SetText(job::File(0), "C:\\X\\PAGE.cvf");
  Store("B.TQV");
  EXPECT_EQ(Select(1), "A.TQV");
  EXPECT_EQ(Select(0), "B.TQV") << "no due job taken, so the early job goes";

  // Only documents within FileCount make a job early, and only by a ".CVF" extension.
  late.SetNumber(job::FileCount, 0);
  Store("B.TQV");
  EXPECT_EQ(Select(0), "");
  late.SetNumber(job::FileCount, 1);
  late.SetText(job::File(0), "C:\\X.CVF\\PAGE");
  Store("B.TQV");
  EXPECT_EQ(Select(0), "");
}

TEST_F(PendingQueue, UnusableJobFilesAreSkippedAndKept) {
  Job("A.TQV");
  const std::string path = PathOf("gw/out/PENDING/A.TQV");
  const std::string whole = ReadFile(path);
  // What makes a record whole or damaged is JobRecord's; here only that a damaged one is passed over.
  WriteFile(path, "KVDTQVOUt" + whole.substr(9));
  EXPECT_EQ(Select(1), "");
  EXPECT_TRUE(Exists(path));
  WriteFile(path, whole);
  {
    auto held = platform::File::OpenExclusive(path);
    ASSERT_TRUE(held.has_value());
    EXPECT_EQ(Select(1), "") << "a file another handle holds is left alone";
  }
  WriteFile(PathOf("gw/out/PENDING/B.TXT"), whole);
  Remove("A.TQV");
  EXPECT_EQ(Select(1), "") << "only job files are read";
}

TEST_F(PendingQueue, SchedulingNoticeAtMostOncePerMinute) {
  Job("A.TQV", 100);
  // With the switch off the notice is not written, but its timer still starts.
  EXPECT_EQ(Select(1), "");
  SetConfig("Debug", "Scheduling", "1");
  tick += 59999;
  Select(1);
  EXPECT_TRUE(Events().empty());
  tick += 1;
  Select(1);
  tick += 1000;
  Select(1);
  EXPECT_EQ(Events(),
            std::vector<std::string>{"4\tCorvanta FAX Service\tScheduled event: 100 seconds remaining"});
}

}  // namespace
}  // namespace tqv
