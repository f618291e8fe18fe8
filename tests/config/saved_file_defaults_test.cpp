#include "config/saved_file_defaults.h"

#include <string>

#include "config/admin_database_fixture.h"

namespace tqv {
namespace {

using SavedFileDefaults = testing::AdminDatabaseTest;

constexpr const char *kLists =
    "[joe]\nC_00000=Standard,s0\nC_00001=Memo,m1\nC_00002=Bare\nC_00004=Hidden,h4\nT_00000=TEMPLATE,t0\n";

TEST_F(SavedFileDefaults, DefaultGivesNameAndPathOfItsEntry) {
  struct Case {
    const char *line;
    bool found;
    const char *name;
    const char *path;
  };
  const Case cases[] = {
      {"DefaultCover=memo\n", true, "memo", "m1"},        {"DefaultCover=Bare\n", true, "Bare", ""},
      {"DefaultCover=Hidden\n", false, "Hidden", ""},  // past a gap
      {"DefaultCover=TEMPLATE\n", false, "TEMPLATE", ""}, {"", false, "", ""},
  };
  for (const Case &c : cases) {
    WriteDatabase(std::string(kLists) + c.line);
    SavedFile file{"stale", "stale"};
    EXPECT_EQ(GetDefaultCover("JOE", 255, 255, file), c.found) << c.line;
    EXPECT_EQ(file.name, c.name) << c.line;
    EXPECT_EQ(file.path, c.path) << c.line;
  }
  WriteDatabase(std::string(kLists) + "DefaultTemplate=template\n");
  SavedFile file;
  EXPECT_TRUE(GetDefaultTemplate("joe", 255, 3, file));
  EXPECT_EQ(file.path, "t0");
}

TEST_F(SavedFileDefaults, SetWritesTheNameAsGivenOnlyWhenAnEntryHasIt) {
  WriteDatabase(std::string(kLists) + "DefaultCover=Standard\n");
  EXPECT_FALSE(SetDefaultCover("joe", "Hidden"));
  EXPECT_FALSE(SetDefaultTemplate("joe", "Memo"));
  EXPECT_EQ(Database(), std::string(kLists) + "DefaultCover=Standard\n");
  EXPECT_TRUE(SetDefaultCover("joe", "MEMO"));
  EXPECT_TRUE(SetDefaultTemplate("joe", "Template"));
  EXPECT_EQ(Database(), std::string(kLists) + "DefaultCover=MEMO\nDefaultTemplate=Template\n");
  EXPECT_TRUE(SetDefaultCover("joe", ""));
  EXPECT_TRUE(SetDefaultCover("joe", ""));
  EXPECT_EQ(Database(), std::string(kLists) + "DefaultTemplate=Template\n");
}

}  // namespace
}  // namespace tqv
