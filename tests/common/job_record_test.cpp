#include "common/job_record.h"

#include <gtest/gtest.h>

#include <string>

#include "common/receive_record.h"

namespace tqv {
namespace {

using namespace std::string_literals;

TEST(JobRecord, FieldsSitWhereHostsExpectThem) {
  // A few offsets written out by hand: the header macros and the table must agree with them.
  EXPECT_EQ(job::RecordSize.offset, 9u);
  EXPECT_EQ(job::ScheduledTime.offset, 13u);
  EXPECT_EQ(job::SkipQueue.offset, 17u);
  EXPECT_EQ(job::Status.offset, 3182u);
  EXPECT_EQ(job::File(0).offset, 3570u);
  EXPECT_EQ(job::File(15).offset, 3570u + 261u * 15);
  EXPECT_EQ(job::Party(job::RecipientParty, PartyField::Email).offset, 2585u + 288);
  EXPECT_EQ(job::CustomString.End(), 8267u);
  EXPECT_EQ(receive::OcrTextFile.offset, 1047u);
}

TEST(JobRecord, TextWritesStayInsideTheirFieldAndEndWithZero) {
  JobRecord record = JobRecord::WithTag(kFaxJobTag);
  JobRecordView view = record.View();
  unsigned char *bytes = view.Bytes();

  view.SetText(job::JobFile, std::string(300, 'p'));
  EXPECT_EQ(view.Text(job::JobFile), std::string(259, 'p'));
  EXPECT_EQ(bytes[job::JobFile.offset + 259], 0);
  EXPECT_EQ(bytes[job::JobFile.offset + 260], 0);
  EXPECT_EQ(bytes[job::JobFile.End()], 0) << "the next field is untouched";

  view.SetText(job::TextTemplateFile, std::string(300, 't'));
  EXPECT_EQ(view.Text(job::TextTemplateFile).size(), 250u);
  view.SetText(job::BillingCode, "123456789");
  EXPECT_EQ(view.Text(job::BillingCode), "1234567");

  // A shorter write clears what a longer one left behind.
  view.SetText(job::Subject, std::string(254, 's'));
  view.SetText(job::Subject, "hi");
  EXPECT_EQ(std::string(reinterpret_cast<char *>(bytes + job::Subject.offset), 256),
            "hi" + std::string(254, '\0'));

  // The tag has no terminator: the record size follows at once.
  EXPECT_EQ(record.Bytes().substr(0, 13), "KVDTQVOUT\x4b\x20\0\0"s);
  EXPECT_TRUE(view.HasValidHeader());
  EXPECT_FALSE(view.IsTextFileJob());
  view.SetText(job::SenderEmail, "textfile");
  EXPECT_FALSE(view.IsTextFileJob());
  view.SetText(job::SenderEmail, "TEXTFILE");
  EXPECT_TRUE(view.IsTextFileJob());
}

TEST(JobRecord, DamagedHeadersAndCountsAreRecognised) {
  JobRecord record = JobRecord::WithTag("KVDTQVOUX");
  JobRecordView view = record.View();
  EXPECT_FALSE(view.HasValidHeader());
  view.SetRaw(job::Tag, kJfaxJobTag);
  EXPECT_TRUE(view.HasValidHeader());
  EXPECT_TRUE(view.IsJfaxJob());
  view.SetNumber(job::RecordSize, 8266u);
  EXPECT_FALSE(view.HasValidHeader());

  // A count from a damaged file never walks off the table.
  for (const auto &[stored, usable] : {std::pair{-1, 0}, {0, 0}, {16, 16}, {17, 16}, {INT32_MIN, 0}}) {
    view.SetNumber(job::FileCount, stored);
    EXPECT_EQ(view.UsableFileCount(), usable) << stored;
  }
}

}  // namespace
}  // namespace tqv
