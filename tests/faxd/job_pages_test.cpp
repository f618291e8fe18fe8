// A job record into the pages of its fax: which record field feeds which cover page field and
// which template, the order of the parts, and the reason when a part cannot be rendered.
#include "faxd/job_pages.h"

#include <gtest/gtest.h>

#include "common/job_record.h"
#include "scratch_dir.h"

namespace tqv::faxd {
namespace {

const unsigned char *BytesOf(const JobRecord &record) {
  return reinterpret_cast<const unsigned char *>(record.Bytes().data());
}

class JobPages : public testing::ScratchDirTest {
 protected:
  JobRecord Record() const {
    JobRecord record = JobRecord::WithTag(kFaxJobTag);
    JobRecordView job = record.View();
    job.SetText(job::SenderName, "anna@example.com");
    job.SetText(job::RecipientName, "+49 89 123");
    job.SetText(job::FaxNumber, "0049 89 123");
    job.SetText(job::Subject, "Order");
    const auto party = [&](RawField block, PartyField field, const char *value) {
      job.SetText(job::Party(block, field), value);
    };
    party(job::SenderParty, PartyField::FirstName, "Anna");
    party(job::SenderParty, PartyField::LastName, "Berger");
    party(job::SenderParty, PartyField::Company, "Example Trading");
    party(job::SenderParty, PartyField::FaxNo, "+49 89 555");
    party(job::SenderParty, PartyField::Voice, "+49 89 556");
    party(job::SenderParty, PartyField::Email, "anna@example.com");
    party(job::RecipientParty, PartyField::LastName, "Hofmann");
    party(job::RecipientParty, PartyField::Company, "Hofmann GmbH");
    party(job::RecipientParty, PartyField::Voice, "+49 89 124");
    return record;
  }
};

TEST_F(JobPages, CoverFieldsComeFromTheirPartyFields) {
  JobRecord record = Record();
  const CoverFields fields = DocumentsOfJob(BytesOf(record), 0).coverFields;
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"FROM_NAME", "Anna Berger"},
      {"FROM_COMPANY", "Example Trading"},
      {"FROM_FAX", "+49 89 555"},
      {"FROM_VOICE", "+49 89 556"},
      {"FROM_EMAIL", "anna@example.com"},
      {"TO_NAME", "Hofmann"},
      {"TO_COMPANY", "Hofmann GmbH"},
      {"TO_VOICE", "+49 89 124"},
      {"SUBJECT", "Order"},
      // No fax number in the address book: the number dialled.
      {"TO_FAX", "0049 89 123"},
  };
  for (const auto &[name, value] : expected)
    EXPECT_EQ(fields.at(name), value) << name;

  // Without address-book names the record's own names stand in.
  JobRecordView job = record.View();
  job.SetText(job::Party(job::SenderParty, PartyField::FirstName), "");
  job.SetText(job::Party(job::SenderParty, PartyField::LastName), "");
  job.SetText(job::Party(job::RecipientParty, PartyField::LastName), "");
  const CoverFields bare = DocumentsOfJob(BytesOf(record), 0).coverFields;
  EXPECT_EQ(bare.at("FROM_NAME"), "anna@example.com");
  EXPECT_EQ(bare.at("TO_NAME"), "+49 89 123");
}

TEST_F(JobPages, DocumentsInOrderAndTheTemplateOfTheJobsKind) {
  Write("TXTTEMPL.RTF", "{\\rtf1 text template}");
  JobRecord record = Record();
  JobRecordView job = record.View();
  job.SetText(job::TemplateFile, PathOf("LETTER.RTF"));
  job.SetText(job::TextTemplateFile, PathOf("TXTTEMPL.RTF"));
  job.SetText(job::File(0), "C:\\PENDING\\00000001.PDF");
  job.SetText(job::File(1), PathOf("00000002.TIF"));
  job.SetText(job::File(2), PathOf("ignored beyond the count"));
  job.SetNumber(job::FileCount, std::int32_t{2});
  JobDocuments documents = DocumentsOfJob(BytesOf(record), 0);
  // Windows-form names become the native names the library uses.
  EXPECT_EQ(documents.files, (std::vector<std::string>{"/PENDING/00000001.PDF", PathOf("00000002.TIF")}));
  EXPECT_EQ(documents.templateFile, PathOf("LETTER.RTF"));
  EXPECT_FALSE(documents.textFileJob);

  job.SetText(job::SenderEmail, "TEXTFILE");
  documents = DocumentsOfJob(BytesOf(record), 0);
  EXPECT_TRUE(documents.textFileJob);
  EXPECT_EQ(documents.templateFile, PathOf("TXTTEMPL.RTF"));
  // "textfile" in other letters is no text-file job.
  job.SetText(job::SenderEmail, "textfile");
  EXPECT_FALSE(DocumentsOfJob(BytesOf(record), 0).textFileJob);
}

TEST_F(JobPages, APartThatCannotBeRenderedNamesItself) {
  const std::string text = Write("letter.txt", "Hello\r\n");
  const std::string zip = Write("report.docx", std::string("PK\x03\x04\x14\0\x06\0", 8));
  struct Case {
    JobDocuments job;
    const char *reason;
  };
  const std::vector<Case> cases = {
      {{.files = {text, zip}}, "document 2 (report.docx) is of a kind that cannot be faxed"},
      {{.messageText = PathOf("gone.txt")}, "the message text (gone.txt) cannot be read"},
      {{.coverPage = PathOf("gone.rtf"), .files = {text}}, "the cover page (gone.rtf) cannot be read"},
      {{}, "nothing to send"},
  };
  for (const Case &c : cases) {
    std::vector<PageImage> pages;
    std::string error;
    EXPECT_FALSE(RenderJob(c.job, 0, Context(Resolution::Normal), pages, error)) << c.reason;
    EXPECT_NE(error.find(c.reason), std::string::npos) << error;
  }
}

TEST_F(JobPages, CoverFirstThenMessageThenDocumentsEachWithTheHeader) {
  JobDocuments job;
  job.coverPage = Write("cover.rtf", "{\\rtf1 Pages: <PAGES>}");
  job.messageText = Write("message.txt", "one\fmessage of two pages");
  job.files = {Write("a.txt", "document")};
  std::vector<PageImage> pages;
  std::string error;
  ASSERT_TRUE(RenderJob(job, 0, Context(Resolution::Fine), pages, error)) << error;
  ASSERT_EQ(pages.size(), 4u);
  for (const PageImage &page : pages)
    EXPECT_GT(page.CountBlack(0, 40), 100u) << "no header line";
}

}  // namespace
}  // namespace tqv::faxd
