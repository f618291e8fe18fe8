#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>

#include "platform/fault_injection.h"
#include "reports/receive_log.h"
#include "reports/report_fixture.h"
#include "reports/send_log.h"

namespace tqv {
namespace {

class FaxLogs : public testing::ReportTest {
 protected:
  void SetUp() override {
    ReportTest::SetUp();
    WriteRegionalSettings("sShortDate=dd/MM/yyyy\r\n");
    std::filesystem::create_directory(PathOf("archive"));
  }
  // The archive name the clock gives, counted up by `offset`.
  std::string ArchiveName(int offset, const char *extension = ".FAX") const {
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08X", static_cast<unsigned>(kReportNow + offset));
    return PathOf("archive") + "\\" + digits + extension;
  }
};

TEST_F(FaxLogs, SendLogStartsWithItsHeaderOnceAndArchivesOnlyDeliveredDocuments) {
  JobRecord job = FaxJob("ann", "", kStatusDelivered);
  JobRecordView view = job.View();
  view.SetText(job::SenderName, "Ann Smith");
  view.SetText(job::BillingCode, "42");
  view.SetText(job::Party(job::RecipientParty, PartyField::LastName), "Doe");
  view.SetText(job::Party(job::RecipientParty, PartyField::Company), "ACME, Inc");
  view.SetText(job::RecipientNumber, "0891");
  view.SetNumber(job::CallDuration, 125);
  view.SetNumber(job::PagesTransferred, 3u);
  view.SetText(job::StatusInfo, "said \"ok\"");
  view.SetText(job::Port, "COM1");
  view.SetNumber(job::ArchiveSent, 1u);
  view.SetText(job::ArchiveDir, PathOf("archive"));
  view.SetNumber(job::FileCount, 3);
  for (int i = 0; i < 3; ++i) {
    WriteFile(PathOf("d" + std::to_string(i)), "document " + std::to_string(i));
    view.SetText(job::File(i), PathOf("d" + std::to_string(i)));
  }
  AppendSendLog(view);
  view.SetNumber(job::Status, 3u);
  AppendSendLog(view);

  // Values are quoted as they are: commas and quotes inside stay unescaped.
  const std::string columns =
      "\"05/03/2003\",\"14:05:09\",\"ann\",\"Ann Smith\",\"42\",\"\",\"Doe\",\"ACME, Inc\","
      "\"0891\",\"02:05\",\"3\",";
  EXPECT_EQ(
      ReadFile(ProductDir() + "/sendlog.txt"),
      "Date,Time,SenderEmail,SenderName,BillinCode,RemoteId,RecipientName,RecipientCompany,RecipientNumber,"
      "CallDuration,PagesTransferred,Result,Info,Port,FilesInArchiveDir\r\n\r\n" +
          columns + "\"SUCCESS\",\"said \"ok\"\",\"COM1\",\"" + ArchiveName(0) + "," + ArchiveName(1) + "," +
          ArchiveName(2) + "\"\r\n" + columns + "\"FAILURE\",\"said \"ok\"\",\"COM1\",\"\"\r\n");
  EXPECT_EQ(ReadFile(InstallationTest::Native(ArchiveName(2))), "document 2");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(PathOf("archive")), {}), 3);

  // A log that cannot be opened makes no copies; a missing archive directory is reported.
  view.SetNumber(job::Status, kStatusDelivered);
  platform::FailFileOperations(1);
  AppendSendLog(view);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(PathOf("archive")), {}), 3);
  view.SetText(job::ArchiveDir, PathOf("gone"));
  AppendSendLog(view);
  EXPECT_TRUE(
      ReadFile(ProductDir() + "/sendlog.txt").ends_with(",\"SUCCESS\",\"said \"ok\"\",\"COM1\",\"\"\r\n"));
  EXPECT_EQ(Events(), std::vector<std::string>{"1\tCorvanta FAX Service\tArchive-directory '" +
                                               PathOf("gone") + "' for sent faxes does not exist"});
}

TEST_F(FaxLogs, ReceiveLogNamesTheRoutedUsersAndArchivesFaxAndText) {
  WriteFile(PathOf("in.fax"), "II*fax");
  WriteFile(PathOf("in.txt"), "recognised");
  WriteFile(InstallationTest::Native(ArchiveName(0)), "taken");  // an archive copy never replaces a file
  std::array<unsigned char, kReceiveTouchedSize> record{};
  ReceiveRecordView receive(record.data());
  receive.SetText(receive::RemoteId, "+49 89 1");
  receive.SetNumber(receive::CallDuration, 59);
  receive.SetNumber(receive::PagesReceived, 2u);
  receive.SetNumber(receive::Result, kResultReceived);
  receive.SetNumber(receive::ArchiveReceived, 1u);
  receive.SetText(receive::ArchiveDir, PathOf("archive"));
  receive.SetText(receive::FaxFile, PathOf("in.fax"));
  receive.SetText(receive::OcrTextFile, PathOf("in.txt"));
  RecipientList routed;
  routed.Add("ann");
  routed.Add("bob");
  AppendReceiveLog(receive, routed);

  // Without a date picture the date is empty.
  WriteRegionalSettings("");
  receive.SetNumber(receive::Result, 5u);
  receive.SetText(receive::ArchiveDir, PathOf("gone"));
  RecipientList nobody;
  AppendReceiveLog(receive, nobody);

  EXPECT_EQ(ReadFile(ProductDir() + "/rcvlog.txt"),
            "Date,Time,RemoteID,CallDuration,PagesReceived,Result,Info,Port,FileInArchiveDir,RoutedTo\r\n\r\n"
            "\"05/03/2003\",\"14:05:09\",\"+49 89 1\",\"00:59\",\"2\","
            "\"SUCCESS\",\"\",\"\",\"" +
                ArchiveName(1) + "\",\"ann,bob\"\r\n" +
                "\"\",\"14:05:09\",\"+49 89 1\",\"00:59\",\"2\",\"FAILURE\",\"\",\"\",\"\",\"\"\r\n");
  EXPECT_EQ(ReadFile(InstallationTest::Native(ArchiveName(1))), "II*fax");
  EXPECT_EQ(ReadFile(InstallationTest::Native(ArchiveName(1, ".TXT"))), "recognised");
  EXPECT_EQ(ReadFile(InstallationTest::Native(ArchiveName(0))), "taken");
  ASSERT_FALSE(Events().empty());
  EXPECT_EQ(Events()[0], "1\tCorvanta FAX Service\tArchive-directory '" + PathOf("gone") +
                             "' for incoming faxes does not exist");
}

}  // namespace
}  // namespace tqv
