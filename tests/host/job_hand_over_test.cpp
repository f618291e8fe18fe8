#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "common/job_record.h"
#include "common/receive_record.h"
#include "config/service_state.h"
#include "host/entry_points.h"
#include "support/installation.h"

namespace tqv {
namespace {

class HandOver : public testing::InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    ASSERT_EQ(host::Initialise(0, ""), 0);
  }

  // A job of ann's with one document, stored as the pending job file `name`.
  JobRecord StoreJob(const std::string &name, const std::string &faxNumber) const {
    WriteFile(PathOf(name + ".tif"), "II*");
    JobRecord job = FaxJob("ann", faxNumber);
    job.View().SetText(job::JobFile, PendingDir() + "\\" + name + ".TQV");
    job.View().SetNumber(job::FileCount, 1);
    job.View().SetText(job::File(0), PathOf(name + ".tif"));
    EXPECT_TRUE(WriteJobFile(job.View().Text(job::JobFile), job));
    return job;
  }
};

TEST_F(HandOver, PendingFailsWhenNoJobFileCanBeCreated) {
  JobRecord job = JobRecord::WithTag(kFaxJobTag);
  job.View().SetText(job::JobFile, "C:\\OLD\\00000001.TQV");
  std::array<unsigned char, kJobRecordSize> hostBuffer{};
  job.CopyTo(hostBuffer.data());
  std::filesystem::remove_all(PathOf("gw/out/PENDING"));
  EXPECT_EQ(host::FaxPending(hostBuffer.data()), -1);
  EXPECT_EQ(std::string_view(reinterpret_cast<char *>(hostBuffer.data()), kJobRecordSize), job.Bytes())
      << "the host's only copy is left exactly as it was handed in";
  EXPECT_TRUE(Events().empty()) << "no event";
  EXPECT_EQ(host::FaxPending(nullptr), -1);
}

TEST_F(HandOver, ScanConvertsAtMostOnceIn15001MillisecondsAndEmptiesTheWorkDirectory) {
  std::array<unsigned char, kJobRecordSize> buffer{};
  EXPECT_EQ(host::Scan(1, buffer.data()), 0);
  EXPECT_EQ(host::LastConversionPassTick(), 1000u);
  tick += 15000;
  WriteFile(PathOf("product/TEMP/TQVSPOOL/left.tmp"), "x");
  host::Scan(1, buffer.data());
  EXPECT_EQ(host::LastConversionPassTick(), 1000u);
  EXPECT_FALSE(Exists(PathOf("product/TEMP/TQVSPOOL/left.tmp")));
  tick += 1;
  host::Scan(1, buffer.data());
  EXPECT_EQ(host::LastConversionPassTick(), 16001u);

  // The tick count wraps after 49.7 days; the difference still counts.
  tick = 5000;
  host::Scan(1, buffer.data());
  EXPECT_EQ(host::LastConversionPassTick(), 5000u);
}

TEST_F(HandOver, FinishedJobLosesItsOwnDocumentsOnly) {
  for (const char *name : {"T.txt", "D1.PDF", "D2.FAX", "D3.FAX"})
    WriteFile(PathOf(name), "x");
  JobRecord job = JobRecord::WithTag(kFaxJobTag);
  JobRecordView view = job.View();
  view.SetText(job::MessageTextFile, PathOf("T.txt"));
  view.SetNumber(job::FileCount, 2);
  view.SetText(job::File(0), PathOf("D1.PDF"));
  view.SetText(job::File(1), PathOf("missing.FAX"));
  view.SetText(job::File(2), PathOf("D3.FAX"));
  EXPECT_EQ(host::FaxSent(view.Bytes()), 0);
  EXPECT_EQ(FileNames(Dir()), (std::vector<std::string>{"D2.FAX", "D3.FAX"})) << "D3 is beyond FileCount";
}

// The report is written while the documents still exist, so it can carry them; the log follows.
TEST_F(HandOver, FinishedJobIsReportedAndLoggedBeforeItsDocumentsGo) {
  WriteFile(ProductDir() + "/tqvadmin.ini", "[Recipients Properties]\r\nann=2048\r\n");  // AttachOnSuccess
  JobRecord job = StoreJob("00000001", "0891");
  job.View().SetNumber(job::Status, kStatusDelivered);
  host::FaxSent(job.View().Bytes());
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_NE(Messages()[0].find("----beginattach:00000001.tif:3\r\nII*"), std::string::npos);
  EXPECT_NE(ReadFile(ProductDir() + "/sendlog.txt").find("\"ann\""), std::string::npos);
  EXPECT_FALSE(Exists(PathOf("00000001.tif")));

  // A text-file job is answered beside its source file, not by mail.
  job.View().SetText(job::SenderEmail, "TEXTFILE");
  job.View().SetText(job::CustomString, PathOf("ORDER.TXT"));
  host::FaxSent(job.View().Bytes());
  EXPECT_EQ(Messages().size(), 1u);
  EXPECT_TRUE(Exists(PathOf("ORDER.OK")));
}

TEST_F(HandOver, JfaxJobGoesToTheJfaxServiceUnlessRefusedAndIsNotLogged) {
  for (std::uint32_t status : {0u, kStatusRefused}) {
    JobRecord job = StoreJob("00000001", "0891@jfax.example");
    job.View().SetNumber(job::Status, status);
    host::JfaxReady(job.View().Bytes());
    EXPECT_FALSE(Exists(PathOf("00000001.tif")));
  }
  std::string messages;
  for (const std::string &message : Messages())
    messages += message;
  EXPECT_NE(messages.find("File Type:JFXTQVOUT\r\nMAIL FROM:ann\r\nRCPT TO:0891@jfax.example\r\n"),
            std::string::npos);
  EXPECT_NE(messages.find("File Type:\r\nMAIL FROM:\r\nRCPT TO:ann\r\n"), std::string::npos)
      << "the refused job goes back to its sender";
  EXPECT_FALSE(Exists(ProductDir() + "/sendlog.txt"));
}

// A blocked job never reaches the host: it is reported and removed, and the next job is handed over.
TEST_F(HandOver, ScanRefusesBlockedJobsAndHandsOverTheNext) {
  WriteFile(ProductDir() + "/tqstring.ini", "[English]\r\nT422=Number blocked\r\n");
  WriteFile(ProductDir() + "/tqvadmin.ini", "[Recipients Properties]\r\nann=65\r\n[ann]\r\nB_00000=089\r\n");
  const JobRecord open = StoreJob("00000001", "030 1234");
  StoreJob("00000002", "089 1234");  // the queue offers the last due job first
  std::array<unsigned char, kJobRecordSize> buffer{};
  ASSERT_EQ(host::Scan(1, buffer.data()), 1);
  EXPECT_EQ(JobRecordView(buffer.data()).Text(job::JobFile), open.View().Text(job::JobFile));
  EXPECT_FALSE(Exists(PathOf("00000002.tif")) || Exists(PathOf("gw/out/PENDING/00000002.TQV")));
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_NE(Messages()[0].find("FAX-Status:6\r\nFAX-StatusInfo:Number blocked\r\n"), std::string::npos);

  ASSERT_EQ(host::ScannedEventAccepted(buffer.data()), 1);
  StoreJob("00000003", "0891");
  EXPECT_EQ(host::Scan(1, buffer.data()), 0) << "only a blocked job left";
  EXPECT_TRUE(std::filesystem::is_empty(PathOf("gw/out/PENDING")));
}

TEST_F(HandOver, UsersAllowedToFaxAreCountedAndStationsLearned) {
  // Default properties (7424) do not include SendFaxes; 1 and 129 (SendFaxes + LearnCsidRoute) do.
  WriteFile(ProductDir() + "/tqvadmin.ini",
            "[Recipient List]\r\nann=Ann\r\nbob=Bob\r\ncid=Cid\r\n"
            "[Recipients Properties]\r\nann=1\r\ncid=129\r\n");
  std::uint32_t count = 99;
  EXPECT_EQ(host::GetNumUsers(&count), 0);
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(host::GetNumUsers(nullptr), 0);

  JobRecord job = FaxJob("ann", "");
  job.View().SetText(job::RemoteId, "+49 89 1234");
  host::FaxSent(job.View().Bytes());
  job.View().SetText(job::SenderEmail, "cid");
  job.View().SetNumber(job::Status, 3u);
  host::FaxSent(job.View().Bytes());
  const std::string admin = ReadFile(ProductDir() + "/tqvadmin.ini");
  EXPECT_EQ(admin.find("ann,+49"), std::string::npos) << "ann does not learn stations";
  EXPECT_NE(admin.find("CSID_00000=cid,+49 89 1234"), std::string::npos) << admin;
}

TEST_F(HandOver, ReceiveFileIsNamedInTempInButNotCreated) {
  std::array<unsigned char, 2048> receive{};
  receive.fill('r');
  EXPECT_EQ(host::CreateReceiveFaxFile(receive.data()), 0);
  const std::string name = ReceiveRecordView(receive.data()).Text(receive::FaxFile);
  const std::string prefix = CurrentService().tempInDirectory + "\\";
  ASSERT_EQ(name.size(), prefix.size() + 12);
  EXPECT_EQ(name.substr(0, prefix.size()), prefix);
  EXPECT_EQ(name.find_first_not_of("0123456789ABCDEF", prefix.size()), prefix.size() + 8);
  EXPECT_EQ(name.substr(prefix.size() + 8), ".FAX");
  EXPECT_FALSE(Exists(Native(name)));
  EXPECT_EQ(receive[receive::FaxFile.offset - 1], 'r');
  EXPECT_EQ(receive[receive::FaxFile.End()], 'r') << "nothing outside the field is touched";
}

}  // namespace
}  // namespace tqv
