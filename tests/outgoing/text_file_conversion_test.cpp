#include "outgoing/text_file_conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "common/job_record.h"
#include "host/entry_points.h"
#include "support/installation.h"

namespace tqv {
namespace {

namespace fs = std::filesystem;

class TextFileConversion : public testing::InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    WriteFile(ProductDir() + "/tqstring.ini",
              "[English]\r\nT428=No recipient\r\nT716=Recipients: %d\r\nT720=Unknown option %s\r\nT900=OK: "
              "\r\nT901=Failed: \r\n");
    fs::create_directories(TextDir());
    ASSERT_EQ(host::Initialise(1, TextDir().c_str()), 0);
  }

  std::string TextDir() const { return PathOf("text"); }
  std::string Order() const { return TextDir() + "/ORDER.TXT"; }

  std::vector<std::string> TextDirNames() const { return FileNames(TextDir()); }
};

TEST_F(TextFileConversion, EachRecipientLineBecomesAQueuedJobWithTheTextAsItsDocument) {
  WriteFile(Order(), "::Smith,ACME,0711 42\r\n::Jones,0711 43\r\n::s,h\r\nPlease deliver 40 bearings.\r\n");
  ScanLater();
  const std::vector<JobRecord> jobs = PendingJobs();
  ASSERT_EQ(jobs.size(), 2u);
  for (const JobRecord &record : jobs) {
    const JobRecordView job = record.View();
    EXPECT_EQ(job.Text(job::SenderEmail), "TEXTFILE");
    EXPECT_EQ(job.Text(job::SenderName), "TEXTFILE");
    EXPECT_EQ(job.Number(job::SkipQueue), 0u) << "text-file jobs always queue";
    EXPECT_EQ(job.Number(job::FineResolution), 1u);
    EXPECT_EQ(job.Text(job::CustomString), TextDir() + "\\ORDER.TXT");
    ASSERT_EQ(job.Number(job::FileCount), 1);
    EXPECT_EQ(fs::path(job.Text(job::File(0))).extension(), ".TXT");
    EXPECT_EQ(ReadFile(Native(job.Text(job::File(0)))), "Please deliver 40 bearings.\r\n");
  }
  const JobRecordView smith = jobs[0].View();
  EXPECT_EQ(smith.Text(job::Party(job::RecipientParty, PartyField::LastName)), "Smith");
  EXPECT_EQ(smith.Text(job::Party(job::RecipientParty, PartyField::Company)), "ACME");
  EXPECT_EQ(TextDirNames(), std::vector<std::string>{"ORDER.TMP"});
  EXPECT_EQ(ReadFile(TextDir() + "/ORDER.TMP"),
            "::Smith,ACME,0711 42\r\n::Jones,0711 43\r\n::s,h\r\nPlease deliver 40 bearings.\r\n");
}

TEST_F(TextFileConversion, JfaxPatternMakesAJfaxJob) {
  SetConfig("JFAX Dial", "Dial0", "+44");
  SetConfig("JFAX Dial", "Domain", "jfax.example");
  WriteFile(Order(), "::+44 20 794 600\r\nText\r\n");
  ScanLater();
  ASSERT_EQ(PendingJobs().size(), 1u);
  EXPECT_EQ(PendingJobs()[0].View().Raw(job::Tag), kJfaxJobTag);
  EXPECT_EQ(PendingJobs()[0].View().Text(job::FaxNumber), "4420794600@jfax.example");
}

// A file that makes no job leaves an error file with the reason, three line breaks and the file as
// it was, or only its working copy when it holds no option line, or nothing when it holds no text.
TEST_F(TextFileConversion, FilesThatCannotBeFaxedLeaveAnErrorFileOrOnlyTheirWorkingCopy) {
  const struct {
    const char *what;
    std::string content;
    std::vector<std::string> left;
    const char *reason;  // nullptr: no error file
  } cases[] = {
      {"no option line", "Just text\r\n", {"ORDER.TMP"}, nullptr},
      {"unknown option", "::S\r\nText\r\n", {"ORDER.ERR"}, "Unknown option S"},
      {"no recipient", "::h\r\nText\r\n", {"ORDER.ERR"}, "No recipient"},
      // More than the pending directory may take from one file: no job is written at all.
      {"over the limit",
       "::0711 42\r\n::0711 43\r\n::0711 44\r\n" + std::string(2000, 'x'),
       {"ORDER.ERR"},
       "Recipients: 1"},
      {"only option lines", "::0711 42\r\n", {}, nullptr},
      {"only blanks", " \r\n\t\r\n", {}, nullptr},
  };
  SetConfig("Fax Attachments", "MaxQueuedPerMessage", "20");
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    WriteFile(Order(), c.content);
    ScanLater();
    EXPECT_TRUE(fs::is_empty(Native(PendingDir())));
    EXPECT_EQ(TextDirNames(), c.left);
    if (c.reason) {
      EXPECT_EQ(ReadFile(TextDir() + "/ORDER.ERR"), c.reason + std::string("\r\n\r\n\r\n") + c.content);
    }
    for (const std::string &name : TextDirNames())
      fs::remove(TextDir() + "/" + name);
  }
}

TEST_F(TextFileConversion, SavedAttachmentRidesAlongAndTheSourceStillGoesOnce) {
  WriteFile(ProductDir() + "/terms.pdf", "%PDF terms");
  WriteFile(ProductDir() + "/tqvadmin.ini", "[TEXTFILE]\r\nA_00000=terms," + ProductDir() + "/terms.pdf\r\n");
  WriteFile(Order(), "::0711 42\r\n::A=terms\r\nText\r\n");
  ScanLater();
  const std::vector<JobRecord> jobs = PendingJobs();
  ASSERT_EQ(jobs.size(), 1u);
  const JobRecordView job = jobs[0].View();
  ASSERT_EQ(job.Number(job::FileCount), 2);
  EXPECT_EQ(ReadFile(Native(job.Text(job::File(0)))), "Text\r\n");
  EXPECT_EQ(ReadFile(Native(job.Text(job::File(1)))), "%PDF terms");
  EXPECT_EQ(job.Text(job::CustomString), TextDir() + "\\ORDER.TXT");
  EXPECT_EQ(TextDirNames(), std::vector<std::string>{"ORDER.TMP"});
  EXPECT_TRUE(fs::exists(ProductDir() + "/terms.pdf"));
}

}  // namespace
}  // namespace tqv
