#include "admin/admin_form.h"

#include <gtest/gtest.h>

#include <string>

#include "admin/admin_fixture.h"
#include "admin/admin_request.h"
#include "config/saved_file_defaults.h"
#include "config/saved_files.h"
#include "config/user_details.h"
#include "config/user_properties.h"

namespace tqv {
namespace {

class AdminForm : public testing::AdminTest {
 protected:
  // A comment line that reads as `chars` characters, its line end included.
  static std::string Comment(std::size_t chars) { return ";;" + std::string(chars - 3, '-') + "\r\n"; }
  // Ann sends the form with the attachments; the outcome of its reply.
  std::string Send(const std::string &form, const AttachmentTable &attachments = {}) {
    WriteFile(MessageText(), form);
    HandleAdminRequest("ann", "Corvanta remote ADMINISTRATION form  ", MessageText(), attachments);
    return Outcome(TakeReply());
  }
  static constexpr const char *kOk = "OK: Corvanta remote ADMINISTRATION form  ";
  static constexpr const char *kFailed = "FAILED: Corvanta remote ADMINISTRATION form  ";
};

TEST_F(AdminForm, FullFormStoresDeletesAndSetsDefaults) {
  EXPECT_EQ(Send(";; Corvanta Remote Administration\r\n\r\nCOVERPAGE:1\r\nC=Letterhead,default\r\n"
                 "TEMPLATE:0\r\nT=Old,delete\r\ndefaults:\r\n;; from here on\r\nR=high\r\nF=ACME Ltd\r\n" +
                     Comment(510) + Comment(479),
                 {Attach("letterhead.rtf", "{\\rtf}")}),
            kOk);
  SavedFile defaultCover;
  EXPECT_TRUE(GetDefaultCover("ann", 255, 260, defaultCover));
  EXPECT_EQ(defaultCover.name, "Letterhead");
  EXPECT_FALSE(FindTemplate("ann", "Old", 260));
  EXPECT_TRUE(HasProperty(GetUserProperties("ann"), UserProperty::HighResolution));
  EXPECT_EQ(GetUserFaxHeader("ann", 511), "ACME Ltd");
  EXPECT_EQ(ReadFile(MessageText()),
            ";; from here on\r\nR=high\r\nF=ACME Ltd\r\n" + Comment(510) + Comment(479))
      << "a block of 1023 characters runs";
}

TEST_F(AdminForm, KeywordLinesIgnoreBlanksAndNameTheMessagesAttachments) {
  const AttachmentTable attachments = {Attach("a.rtf", "{\\rtf a}"), Attach("b.rtf", "{\\rtf b}")};
  EXPECT_EQ(Send("COVER PAGE : 2\r\nC = Second\r\n\tTemplate:\t1x\r\nT=First\r\n", attachments), kOk);
  EXPECT_EQ(ReadFile(Native(FindCover("ann", "Second", 260).value_or(""))), "{\\rtf b}");
  EXPECT_EQ(ReadFile(Native(FindTemplate("ann", "First", 260).value_or(""))), "{\\rtf a}");
  EXPECT_EQ(ReadFile(MessageText()), " ");
}

TEST_F(AdminForm, Outcomes) {
  const std::string rtf = Attach("x.rtf", "{\\rtf}");
  struct Case {
    std::string form;
    std::string outcome;
  } cases[] = {
      {"COVERPAGE:5\r\nC=Letterhead\r\nATTACHMENT:-1\r\nA=Terms\r\n", kOk},
      {"TEMPLATE:0\r\nT=Old,delete\r\nTEMPLATE:0\r\nT=Memo,delete\r\n", std::string(kFailed) + " | TEMPLATE"},
      {"COVERPAGE:1\r\nC=Letterhead\r\nstore this please\r\n", std::string(kFailed) + " | storethisplease"},
      {"SIGNATURE:1\r\nC=Letterhead\r\n", std::string(kFailed) + " | SIGNATURE"},
      {"defaults:\r\nF=ACME\r\n" + Comment(510) + Comment(507), kOk},
      {"ATTACHMENT:2\r\nA=Terms\r\nCOVERPAGE:1\r\nC=Memo,maybe\r\ndefaults:\r\nR=fine\r\n",
       std::string(kFailed) + " | E818 maybe\r\nE800\r\n\r\nRESOLUTION=#fine#"},
      {"COVERPAGE:1\r\nC=Memo,maybe\r\nTEMPLATE:0\r\nT=Nope,delete\r\nATTACHMENT:0\r\nA=Terms,delete\r\n"
       "defaults:anything\r\n",
       std::string(kOk) + " | E818 maybe\r\nE822\r\nE822\r\n"},
      {"COVERPAGE:1\r\n", std::string(kFailed) + " | E806\r\n"},
  };
  for (const Case &c : cases) {
    const std::string database = Database();
    EXPECT_EQ(Send(c.form, {rtf}), c.outcome) << c.form;
    EXPECT_EQ(Database(), database) << c.form;
  }
}

TEST_F(AdminForm, UnreadableFormIsAnEmptyDefaultsCommand) {
  EXPECT_EQ(Send(""), kOk);
  std::filesystem::remove(MessageText());
  HandleAdminRequest("ann", "Corvanta Remote Administration", MessageText(), {Attach("x.rtf", "{\\rtf}")});
  EXPECT_EQ(Outcome(TakeReply()), "FAILED: Corvanta Remote Administration | E807");
}

}  // namespace
}  // namespace tqv
