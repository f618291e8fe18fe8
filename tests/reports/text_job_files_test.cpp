#include "reports/text_job_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/fault_injection.h"
#include "reports/report_fixture.h"
#include "reports/report_layout.h"

namespace tqv {
namespace {

using TextJobFiles = testing::ReportTest;

TEST_F(TextJobFiles, ResultFileHoldsTheReportAndTheWorkingCopyUnderAFreeName) {
  WriteFile(PathOf("ORDER.TMP"), "fax text\r\n");
  JobRecord job = FaxJob("", "", kStatusDelivered);
  job.View().SetText(job::CustomString, PathOf("ORDER.TXT"));
  const std::string report = FormatSentReport(job.View());
  WriteTextJobResult(job.View());
  EXPECT_EQ(ReadFile(PathOf("ORDER.OK")), report + "fax text\r\n");
  EXPECT_FALSE(Exists(PathOf("ORDER.TMP")));

  // A second job from the same file finds the name taken and its working copy gone.
  WriteTextJobResult(job.View());
  EXPECT_EQ(ReadFile(PathOf("ORDER1.OK")), report);

  // A name without an extension; the dot of a directory name is not one.
  job.View().SetNumber(job::Status, 3u);
  job.View().SetText(job::CustomString, PathOf("in.d/NOTE"));
  std::filesystem::create_directory(PathOf("in.d"));
  WriteFile(PathOf("in.d/NOTE.TMP"), "note");
  WriteTextJobResult(job.View());
  EXPECT_EQ(ReadFile(PathOf("in.d/NOTE.ERR")), FormatSentReport(job.View()) + "note");

  // When the result file cannot be made the working copy goes all the same.
  WriteFile(PathOf("in.d/NOTE.TMP"), "note");
  platform::FailFileOperations(1);
  WriteTextJobResult(job.View());
  EXPECT_FALSE(Exists(PathOf("in.d/NOTE1.ERR")) || Exists(PathOf("in.d/NOTE.TMP")));
}

TEST_F(TextJobFiles, ErrorFileHoldsTheTextThreeLineBreaksAndTheTextFile) {
  const std::string binary("a\0b\r\nc\n", 7);
  WriteFile(PathOf("IN.TXT"), binary);
  WriteFile(PathOf("IN.ERR"), "old error file, replaced");
  WriteTextJobErrorFile("No recipient", PathOf("IN.TXT"));
  EXPECT_EQ(ReadFile(PathOf("IN.ERR")), "No recipient\r\n\r\n\r\n" + binary);
  EXPECT_FALSE(Exists(PathOf("IN.TXT")));

  // When the error file cannot be made, the text file stays.
  WriteFile(PathOf("KEEP.TXT"), "x");
  platform::FailFileOperations(1);
  WriteTextJobErrorFile("No recipient", PathOf("KEEP.TXT"));
  EXPECT_TRUE(Exists(PathOf("KEEP.TXT")));
}

}  // namespace
}  // namespace tqv
