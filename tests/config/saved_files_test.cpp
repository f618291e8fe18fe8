#include "config/saved_files.h"

#include <string>
#include <vector>

#include "config/admin_database_fixture.h"
#include "config/saved_file_defaults.h"

namespace tqv {
namespace {

class SavedFiles : public testing::AdminDatabaseTest {
 protected:
  // Every entry the iteration shows, "name|path", and the result that ended it.
  static std::pair<std::vector<std::string>, int> Walk(SavedFileKind kind, std::string_view user) {
    std::vector<std::string> entries;
    SavedFile file;
    int result = FirstSavedFile(kind, user, 255, 255, file);
    for (; result == kListEntry; result = NextSavedFile(255, 255, file))
      entries.push_back(file.name + "|" + file.path);
    return {entries, result};
  }

  std::string StoredFile(std::string_view name) const {
    WriteFile(PathOf(name), "bytes");
    return PathOf(name);
  }
};

using Entries = std::vector<std::string>;

TEST_F(SavedFiles, IterationEndsAtAGapOrAnEntryWithoutComma) {
  WriteDatabase(
      "[joe(1)]\nA_00000=Price list,C:\\1.DOC\nA_00001=Terms,C:\\2.DOC\nA_00003=Hidden,C:\\3.DOC\n"
      "C_00000=COVERPGE,C:\\0.CVP\nC_00001=Memo,C:\\1.CVP\nC_00002=no comma\nC_00003=After,C:\\x\n"
      "T_00001=Memo,C:\\1.TPL\n[joe]\nA_00000=" +
      std::string(300, 'n') + ",p\nA_00001=" + std::string(600, 'x') + ",p\n");
  EXPECT_EQ(Walk(SavedFileKind::Fax, "joe[1]"),
            std::pair(Entries{"Price list|C:\\1.DOC", "Terms|C:\\2.DOC"}, 0));
  EXPECT_EQ(Walk(SavedFileKind::Coverpage, "JOE[1]"),
            std::pair(Entries{"COVERPGE|C:\\0.CVP", "Memo|C:\\1.CVP"}, -1));
  EXPECT_EQ(CountSavedFiles(SavedFileKind::Coverpage, "joe[1]"), 2);
  // Readers start at index 0, so a template list without it is empty.
  EXPECT_EQ(CountSavedFiles(SavedFileKind::Template, "joe[1]"), 0);
  EXPECT_EQ(FindTemplate("joe[1]", "Memo", 255), std::nullopt);
  // Values are cut to 510 characters before the split, which can cut off the comma.
  EXPECT_EQ(Walk(SavedFileKind::Fax, "joe"), std::pair(Entries{std::string(254, 'n') + "|p"}, -1));
}

TEST_F(SavedFiles, FindTakesTheFirstNamedEntryInAnyCase) {
  InitAdminDatabase(Dir(), 10, 3, 10);
  WriteDatabase(
      "[joe]\nT_00000=TEMPLATE,t0\nT_00001=,nameless\nT_00002=Bare\nT_00003=Letter,t3\nT_00004=LETTER,t4\n"
      "T_00006=Hidden,t6\n");
  const std::pair<const char *, std::optional<std::string>> cases[] = {
      {"letter", "t3"}, {"template", "t0"}, {"BARE", ""}, {"", std::nullopt}, {"Hidden", std::nullopt},
  };
  for (const auto &[name, path] : cases) {
    EXPECT_EQ(FindTemplate("joe", name, 255), path) << name;
  }
  EXPECT_EQ(FindCover("joe", "Letter", 255), std::nullopt);
}

TEST_F(SavedFiles, AddWithAnExistingNameReplacesItInPlaceAndDeletesTheOldFile) {
  const std::string oldFile = StoredFile("old.cvp");
  WriteDatabase("[joe]\nC_00000=COVERPGE,c0\nC_00001=Bare\nC_00002=Urgent," + oldFile +
                "\nC_00003=Plain,c3\n");
  EXPECT_EQ(AddSavedFile(SavedFileKind::Coverpage, "joe", "URGENT", "new.cvp"), 0);
  EXPECT_EQ(Database(),
            "[joe]\nC_00000=COVERPGE,c0\nC_00001=Bare\nC_00002=URGENT,new.cvp\nC_00003=Plain,c3\n");
  EXPECT_FALSE(Exists(oldFile));
  // Saving the same file again must not delete it.
  const std::string same = StoredFile("same.cvp");
  EXPECT_EQ(AddSavedFile(SavedFileKind::Coverpage, "joe", "Plain", same), 0);
  EXPECT_EQ(AddSavedFile(SavedFileKind::Coverpage, "joe", "plain", same), 0);
  EXPECT_TRUE(Exists(same));
  // Reserved names are refused only for their own list.
  const std::string before = Database();
  EXPECT_EQ(AddSavedFile(SavedFileKind::Coverpage, "joe", "coverpge", "x"), -1);
  EXPECT_EQ(DeleteSavedFile(SavedFileKind::Template, "joe", "template"), -1);
  EXPECT_EQ(Database(), before);
  EXPECT_EQ(AddSavedFile(SavedFileKind::Fax, "joe", "COVERPGE", "y"), 0);
  EXPECT_EQ(FindAttachment("joe", "coverpge", 260), "y");
}

TEST_F(SavedFiles, AddNewNameMovesTheListDownBelowTheLimit) {
  InitAdminDatabase(Dir(), 10, 10, 3);
  const std::string droppedFile = StoredFile("dropped.doc");
  WriteDatabase(
      "[joe]\nT_00000=TEMPLATE,t0\nT_00001=One,t1\nT_00002=Two,t2\nT_00003=Three,t3\n"
      "A_00000=a,1\nA_00001=b,2\nA_00002=c," +
      droppedFile + "\n");
  EXPECT_EQ(AddSavedFile(SavedFileKind::Template, "joe", "New", "tn"), 0);
  EXPECT_EQ(Walk(SavedFileKind::Template, "joe"),
            std::pair(Entries{"TEMPLATE|t0", "New|tn", "One|t1", "Two|t2", "Three|t3"}, 0));
  EXPECT_EQ(AddSavedFile(SavedFileKind::Fax, "joe", "d", "4"), 0);
  EXPECT_EQ(Walk(SavedFileKind::Fax, "joe"), std::pair(Entries{"d|4", "a|1", "b|2"}, 0));
  EXPECT_TRUE(Exists(droppedFile));
  EXPECT_EQ(AddSavedFile(SavedFileKind::Coverpage, "joe", "Memo", "m"), 0);
  EXPECT_EQ(AdminGetString("joe", "C_00001", "", 255), "Memo,m");
}

TEST_F(SavedFiles, DeleteClosesTheGapAndLeavesTheOldLastKeyEmpty) {
  const std::string deleted = StoredFile("one.doc");
  WriteDatabase("[joe]\nC_00000=Standard,c0\nC_00001=Bare\nC_00002=One," + deleted +
                "\nC_00003=Two,t\nC_00004=Three,h\nC_00006=Late,l\n");
  // Never index 0, never an entry without comma, never past a gap.
  for (const char *name : {"Standard", "Bare", "Late", "Gone"}) {
    EXPECT_EQ(DeleteSavedFile(SavedFileKind::Coverpage, "joe", name), -1) << name;
  }
  EXPECT_EQ(DeleteSavedFile(SavedFileKind::Coverpage, "joe", "ONE"), 0);
  EXPECT_EQ(Database(),
            "[joe]\nC_00000=Standard,c0\nC_00001=Bare\nC_00002=Two,t\nC_00003=Three,h\nC_00004=\n"
            "C_00006=Late,l\n");
  EXPECT_FALSE(Exists(deleted));
}

constexpr const char *kLists =
    "[joe]\nC_00000=Standard,s0\nC_00001=Memo,m1\nC_00002=Bare\nC_00004=Hidden,h4\nT_00000=TEMPLATE,t0\n";

TEST_F(SavedFiles, DefaultGivesNameAndPathOfItsEntry) {
  const std::tuple<const char *, bool, const char *, const char *> cases[] = {
      {"DefaultCover=memo\n", true, "memo", "m1"},        {"DefaultCover=Bare\n", true, "Bare", ""},
      {"DefaultCover=Hidden\n", false, "Hidden", ""},  // past a gap
      {"DefaultCover=TEMPLATE\n", false, "TEMPLATE", ""}, {"", false, "", ""},
  };
  for (const auto &[line, found, name, path] : cases) {
    WriteDatabase(std::string(kLists) + line);
    SavedFile file{"stale", "stale"};
    EXPECT_EQ(GetDefaultCover("JOE", 255, 255, file), found) << line;
    EXPECT_EQ(file.name, name) << line;
    EXPECT_EQ(file.path, path) << line;
  }
  WriteDatabase(std::string(kLists) + "DefaultTemplate=template\n");
  SavedFile file;
  EXPECT_TRUE(GetDefaultTemplate("joe", 255, 3, file));
  EXPECT_EQ(file.path, "t0");
}

TEST_F(SavedFiles, SetDefaultWritesTheNameAsGivenOnlyWhenAnEntryHasIt) {
  WriteDatabase(std::string(kLists) + "DefaultCover=Standard\n");
  EXPECT_FALSE(SetDefaultCover("joe", "Hidden"));
  EXPECT_FALSE(SetDefaultTemplate("joe", "Memo"));
  EXPECT_EQ(Database(), std::string(kLists) + "DefaultCover=Standard\n");
  EXPECT_TRUE(SetDefaultCover("joe", "MEMO"));
  EXPECT_TRUE(SetDefaultTemplate("joe", "Template"));
  EXPECT_EQ(Database(), std::string(kLists) + "DefaultCover=MEMO\nDefaultTemplate=Template\n");
  EXPECT_TRUE(SetDefaultCover("joe", ""));
  EXPECT_EQ(Database(), std::string(kLists) + "DefaultTemplate=Template\n");
}

}  // namespace
}  // namespace tqv
