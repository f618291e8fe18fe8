#include "config/admin_database.h"

#include <cstdlib>
#include <filesystem>
#include <string>

#include "config/admin_database_fixture.h"
#include "config/user_properties.h"
#include "platform/profile.h"
#include "support/platform_backend.h"

namespace tqv {
namespace {

using AdminDatabase = testing::AdminDatabaseTest;

TEST_F(AdminDatabase, UserSectionIsStoredUnderParenthesesButKeysKeepBrackets) {
  ASSERT_TRUE(AdminPutString("joe[1]@x", "DefaultCover", "Memo"));
  ASSERT_TRUE(AdminPutString("Recipient List", "joe[1]@x", "Joe One"));
  EXPECT_EQ(Database(), "[joe(1)@x]\nDefaultCover=Memo\n[Recipient List]\njoe[1]@x=Joe One\n");
  EXPECT_EQ(AdminGetString("JOE[1]@X", "defaultcover", "", 255), "Memo");
  // Cut first, mapped after: a "]" past character 510 cannot end the header early.
  EXPECT_EQ(AdminSectionName(std::string(509, 'a') + "[]"), std::string(509, 'a') + "(");
}

TEST_F(AdminDatabase, StartsFromTheProductDirectoryOfTheMachineFile) {
  ResetAdminDatabaseForTesting();
  ResetSettingsPathsForTesting();
  std::filesystem::create_directories(WinDir() + "/Corvanta");
  platform::ProfileWriteString("Corvanta", "Directory", Dir() + "\\", WinDir() + "/Corvanta/TQVMSERV.INI");
  InitAdminDatabase(3, 4, 6);
  ResetSettingsPathsForTesting();
  EXPECT_EQ(AdminDatabaseFile(), Dir() + "\\tqvadmin.ini");
  EXPECT_EQ(SavedFileLimit(SavedFileKind::Coverpage), 3);
  EXPECT_EQ(SavedFileLimit(SavedFileKind::Template), 4);
  EXPECT_EQ(SavedFileLimit(SavedFileKind::Fax), 6);
}

TEST_F(AdminDatabase, DirectoryTooLongForThePathLeavesNoDatabaseRatherThanAnotherFile) {
  // 247 characters and a separator leave 11 of the 12 that "tqvadmin.ini" needs.
  const std::string directory = Dir() + "/" + std::string(246 - Dir().size(), 'd');
  std::filesystem::create_directories(directory);
  InitAdminDatabase(directory, 10, 10, 10);
  EXPECT_FALSE(AdminPutString("FaxHeaders", "joe", "Joe"));
  EXPECT_EQ(GetUserProperties("joe"), kDefaultUserProperties);
  EXPECT_EQ(AdminGetString("FaxHeaders", "joe", "none", 3), "no");
  EXPECT_TRUE(std::filesystem::is_empty(directory));
  ASSERT_EQ(Events().size(), 1u);
  EXPECT_NE(Events()[0].find("too long"), std::string::npos) << Events()[0];

  InitAdminDatabase(directory.substr(0, directory.size() - 1), 10, 10, 10);
  EXPECT_EQ(AdminDatabaseFile().size(), 259u);
}

}  // namespace
}  // namespace tqv
