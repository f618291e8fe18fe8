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

  // A due fax job named `name` whose subject is its name, as the library writes it.
  JobRecord &Job(const std::string &name) {
    JobRecord &record = jobs[name] = JobRecord::WithTag(kFaxJobTag);
    record.View().SetText(job::Subject, name);
    record.View().SetText(job::JobFile, PendingDir() + "\\" + name);
    return record;
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
  Store("A.TQV");
  Job("B.TQV").View().SetNumber(job::ScheduledTime, static_cast<std::int32_t>(kNow));
  Store("B.TQV");
  EXPECT_EQ(Select(1), "B.TQV");
  EXPECT_EQ(std::string_view(reinterpret_cast<char *>(output.data()), kJobRecordSize), jobs["B.TQV"].Bytes());
  EXPECT_EQ(Select(1), "B.TQV") << "the queue never removes a job itself";
  Remove("B.TQV");
  EXPECT_EQ(Select(1), "A.TQV");
  EXPECT_EQ(Select(0), "") << "due jobs wait while the host does not want them";
}

TEST_F(PendingQueue, SkipQueueAndEarlyJobsIgnoreScheduleAndFlag) {
  Job("A.TQV").View().SetNumber(job::ScheduledTime, static_cast<std::int32_t>(kNow + 86400));
  jobs["A.TQV"].View().SetText(job::CoverPageFile, "C:\\COVER\\FRONT.CVF");
  Store("A.TQV");
  EXPECT_EQ(Select(0), "A.TQV") << "an early job scheduled tomorrow";

  Job("B.TQV").View().SetNumber(job::ScheduledTime, static_cast<std::int32_t>(kNow + 86400));
  jobs["B.TQV"].View().SetNumber(job::SkipQueue, 1u);
  Store("B.TQV");
  Job("C.TQV");
  Store("C.TQV");
  EXPECT_EQ(Select(0), "B.TQV");
  EXPECT_EQ(Select(1), "B.TQV") << "a skip-queue job ends the search at once";
}

TEST_F(PendingQueue, EarlyJobsAfterADueJobAreJudgedByTheirSchedule) {
  Job("A.TQV");
  Store("A.TQV");
  JobRecordView late = Job("B.TQV").View();
  late.SetNumber(job::ScheduledTime, static_cast<std::int32_t>(kNow + 60));
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
  Store("A.TQV");
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
  Job("A.TQV").View().SetNumber(job::ScheduledTime, static_cast<std::int32_t>(kNow + 100));
  Store("A.TQV");
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
