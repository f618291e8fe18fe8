#include "admin/admin_commands.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "admin/admin_fixture.h"
#include "admin/admin_request.h"
#include "config/numbered_list.h"
#include "config/saved_file_defaults.h"
#include "config/saved_files.h"
#include "config/user_details.h"
#include "config/user_properties.h"

namespace tqv {
namespace {

class AdminCommands : public testing::AdminTest {
 protected:
  // One subject-mode request of ann; its reply's outcome.
  std::string Request(const std::string &subject, const AttachmentTable &attachments = {},
                      const std::string &text = "") {
    if (!text.empty()) WriteFile(MessageText(), text);
    HandleAdminRequest("ann", subject, MessageText(), attachments);
    return Outcome(TakeReply());
  }
  std::string Entry(std::string_view prefix, int index) const { return ReadListEntry("ann", prefix, index); }
};

TEST_F(AdminCommands, StoreAsDefaultGoesFirstAndAStoreOfTheSameNameReplacesIt) {
  EXPECT_EQ(Request("C=Letterhead,default", {Attach("letterhead.rtf", "{\\rtf one}")}),
            "OK: C=Letterhead,default");
  EXPECT_EQ(Entry("C_", 0), "COVERPGE," + CoverDir() + "/std.rtf");
  EXPECT_EQ(Entry("C_", 2), "Memo," + CoverDir() + "/memo.rtf");
  const std::optional<std::string> first = FindCover("ann", "letterhead", 260);
  ASSERT_TRUE(first);
  EXPECT_EQ(Entry("C_", 1), "Letterhead," + *first);
  EXPECT_TRUE(std::regex_match(Native(*first), std::regex(".*/COVER/[0-9A-F]{8}\\.rtf"))) << *first;
  EXPECT_EQ(ReadFile(Native(*first)), "{\\rtf one}");
  SavedFile defaultCover;
  EXPECT_TRUE(GetDefaultCover("ann", 255, 260, defaultCover));
  EXPECT_EQ(defaultCover.name, "Letterhead");

  EXPECT_EQ(Request(" c = LETTERHEAD , Default ", {Attach("new.rtf", "{\\rtf two}")}),
            "OK:  c = LETTERHEAD , Default ");
  const std::optional<std::string> second = FindCover("ann", "Letterhead", 260);
  ASSERT_TRUE(second);
  EXPECT_EQ(Entry("C_", 1), "LETTERHEAD," + *second) << "replaced in place";
  EXPECT_EQ(Entry("C_", 2), "Memo," + CoverDir() + "/memo.rtf");
  EXPECT_FALSE(Exists(Native(*first))) << "the old stored file goes";
  EXPECT_EQ(ReadFile(Native(*second)), "{\\rtf two}");
  EXPECT_EQ(FilesIn(CoverDir()).size(), 5u);
}

TEST_F(AdminCommands, StoredFilesKeepASafeExtensionOrGetTheirKindsOwn) {
  SetConfig("Saved Template Attachments", "CheckFormat", "0");
  EXPECT_EQ(Request("A=Terms,default", {Attach("terms", "II*\0")}), "OK: A=Terms,default | E803");
  EXPECT_EQ(Request("T=Plain", {Attach("plain", "text")}), "OK: T=Plain");
  EXPECT_EQ(Request("T=Odd", {Attach("odd.x|y", "text")}), "OK: T=Odd");
  const std::optional<std::string> terms = FindAttachment("ann", "Terms", 260);
  ASSERT_TRUE(terms);
  EXPECT_TRUE(std::regex_match(Native(*terms), std::regex(".*/ATTACH/[0-9A-F]{8}\\.FAX"))) << *terms;
  for (const char *name : {"Plain", "Odd"})
    EXPECT_TRUE(
        std::regex_match(FindTemplate("ann", name, 260).value_or(""), std::regex(".*[0-9A-F]{8}\\.RTF")))
        << name;
  SavedFile defaultTemplate;
  GetDefaultTemplate("ann", 255, 260, defaultTemplate);
  EXPECT_EQ(defaultTemplate.name, "old") << "only the request that says so changes the default";
}

TEST_F(AdminCommands, DeleteRemovesEntryAndFileAndADeletedDefaultTemplateFallsBack) {
  WriteFile(MessageText(), "");
  EXPECT_EQ(Request("c = memo , DELETE"), "OK: c = memo , DELETE");
  EXPECT_EQ(Entry("C_", 1), "");
  EXPECT_FALSE(Exists(CoverDir() + "/memo.rtf"));

  EXPECT_EQ(Request("TEMPLATE=OLD,delete"), "OK: TEMPLATE=OLD,delete");
  EXPECT_FALSE(Exists(CoverDir() + "/old.rtf"));
  SavedFile defaultTemplate;
  EXPECT_TRUE(GetDefaultTemplate("ann", 255, 260, defaultTemplate));
  EXPECT_EQ(defaultTemplate.name, "TEMPLATE");
}

TEST_F(AdminCommands, RefusedRequestsChangeNothing) {
  const std::string rtf = Attach("x.rtf", "{\\rtf}");
  struct Case {
    std::string subject;
    AttachmentTable attachments;
    std::string text;
    std::vector<std::string> setting;  // section, key, value, value afterwards
    std::string outcome;
  } cases[] = {
      {"T=Letter,maybe", {rtf}, "", {}, "FAILED: T=Letter,maybe | E818 maybe"},
      {"C=a,default,x", {rtf}, "", {}, "FAILED: C=a,default,x | E825"},
      {"A=a" + std::string(30, ','), {rtf}, "", {}, "FAILED: A=a" + std::string(30, ',') + " | E825"},
      {"c = Memo , DELETE", {rtf}, "", {}, "FAILED: c = Memo , DELETE | E821"},
      {"C=coverpge,delete", {}, "", {}, "FAILED: C=coverpge,delete | E823"},
      {"t=Template,delete", {}, "", {}, "FAILED: t=Template,delete | E824"},
      {"A=nothing,delete", {}, "", {}, "FAILED: A=nothing,delete | E822"},
      {"C=x", {}, "", {}, "FAILED: C=x | E800"},
      {"C=x", {"", rtf}, "", {}, "FAILED: C=x | E800"},
      {"C=x", {rtf, rtf}, "", {}, "FAILED: C=x | E820"},
      {"C=x", {PathOf("gone.rtf")}, "", {}, "FAILED: C=x | E801"},
      {"A=x,default", {PathOf("gone.tif")}, "", {}, "FAILED: A=x,default | E801"},
      {"C=Memo",
       {rtf},
       "",
       {"Saved Coverpage Attachments", "MaxFiles", "2", "10"},
       "FAILED: C=Memo | E815 2"},
      {"T=x",
       {Attach("big.rtf", std::string(1001, 'x'))},
       "",
       {"Saved Template Attachments", "MaxSize", "1", "2000"},
       "FAILED: T=x | E811 1000"},
      {"C=x", {Attach("x.doc", "{\\rtf}")}, "", {}, "FAILED: C=x | E810"},
      {"A=x", {Attach("x.tif", "MM\0*")}, "", {}, "FAILED: A=x | E814"},
      {"C=COVERPGE", {rtf}, "", {}, "FAILED: C=COVERPGE | E802"},
      {"T=template", {rtf}, "", {}, "FAILED: T=template | E802"},
      {"Please store this", {rtf}, "", {}, "FAILED: Please store this | E806"},
      {"", {}, "", {}, "FAILED:  | E806"},
      {"defaults", {rtf}, "C=Memo\r\n", {}, "FAILED: defaults | E807"},
      {"DEFAULTS now", {}, "C=Memo\r\nR=high\r\nnonsense\r\n", {}, "FAILED: DEFAULTS now | nonsense"},
      {"defaults", {}, "F=ACME\r\n Size = 10\r\n", {}, "FAILED: defaults |  Size"},
      {"defaults",
       {},
       "R=" + std::string(300, 'x'),
       {},
       "FAILED: defaults | \r\nRESOLUTION=#" + std::string(100, 'x') + "#"},
  };
  for (const Case &c : cases) {
    if (!c.setting.empty()) SetConfig(c.setting[0], c.setting[1], c.setting[2]);
    const std::string database = Database();
    const std::vector<std::string> covers = FilesIn(CoverDir());
    EXPECT_EQ(Request(c.subject, c.attachments, c.text), c.outcome);
    EXPECT_EQ(Database(), database) << c.subject;
    EXPECT_EQ(FilesIn(CoverDir()), covers) << c.subject;
    EXPECT_TRUE(FilesIn(AttachDir()).empty()) << c.subject;
    if (!c.setting.empty()) SetConfig(c.setting[0], c.setting[1], c.setting[3]);
  }

  const std::string database = Database();
  HandleAdminRequest("bob", "C=x", MessageText(), {rtf});
  EXPECT_EQ(Outcome(TakeReply()), "FAILED: C=x | E828");
  EXPECT_EQ(Database(), database);
}

TEST_F(AdminCommands, DefaultsBlockAppliesEveryKeyItCan) {
  EXPECT_EQ(Request("defaults", {}, "c = memo\r\n;; comment\r\n\r\nR=HIGH\r\nF=ACME Ltd\r\n"),
            "OK: defaults");
  SavedFile defaultCover;
  EXPECT_TRUE(GetDefaultCover("ann", 255, 260, defaultCover));
  EXPECT_EQ(defaultCover.name, "memo");
  EXPECT_TRUE(HasProperty(GetUserProperties("ann"), UserProperty::HighResolution));
  EXPECT_EQ(GetUserFaxHeader("ann", 511), "ACME Ltd");

  EXPECT_EQ(Request("defaults", {}, "R=fine\r\nT=\r\nFax Header=Other\r\nCOVERPAGE=Nope\r\nT=Nope\r\nT=\r\n"),
            "FAILED: defaults | E904 Nope\r\nRESOLUTION=#fine#");
  EXPECT_TRUE(HasProperty(GetUserProperties("ann"), UserProperty::HighResolution));
  EXPECT_EQ(GetUserFaxHeader("ann", 511), "Other");
  EXPECT_TRUE(GetDefaultCover("ann", 255, 260, defaultCover));
  EXPECT_EQ(defaultCover.name, "memo");
  SavedFile defaultTemplate;
  EXPECT_TRUE(GetDefaultTemplate("ann", 255, 260, defaultTemplate));
  EXPECT_EQ(defaultTemplate.name, "TEMPLATE");

  EXPECT_EQ(Request("defaults", {}, "T=Nope\r\nC=\r\nF=\r\nr=n\r\n"), "FAILED: defaults | \r\nE905 Nope");
  EXPECT_FALSE(GetDefaultCover("ann", 255, 260, defaultCover));
  EXPECT_EQ(GetUserFaxHeader("ann", 511), std::nullopt);
  EXPECT_FALSE(HasProperty(GetUserProperties("ann"), UserProperty::HighResolution));
}

}  // namespace
}  // namespace tqv
