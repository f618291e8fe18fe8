#include "common/path_helpers.h"

#include <filesystem>

#include "common/text_limits.h"
#include "platform/file.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

class PathHelpers : public testing::TempDirTest {};

TEST(AppendBackslash, AddsOneSeparatorOnlyWhereMissingAndWithinAPathBuffer) {
  const std::pair<std::string, std::string> cases[] = {
      {"D:\\DATA\\", "D:\\DATA\\"},
      {"D:\\DATA", "D:\\DATA\\"},
      {"", "\\"},
      {std::string(kMaxPath, 'a'), std::string(kMaxPath, 'a')},
      {std::string(kMaxPath - 1, 'a'), std::string(kMaxPath - 1, 'a') + "\\"}};
  for (const auto &[path, expected] : cases) {
    std::string text = path;
    EXPECT_EQ(AppendBackslash(text), expected) << path;
  }
}

TEST_F(PathHelpers, ExistenceAndSizeChecks) {
  WriteFile(PathOf("JOB.TQV"), "x");
  EXPECT_TRUE(FileExists(PathOf("JOB.TQV")));
  EXPECT_TRUE(FileExists(Dir() + "\\*.TQV"));
  EXPECT_FALSE(FileExists(Dir() + "\\*.TMP"));
  EXPECT_FALSE(FileExists(PathOf("MISSING.TQV")));
  EXPECT_FALSE(FileExists(PathOf("JOB.TQV") + "\\"));

  EXPECT_TRUE(DirectoryExists(Dir() + "\\"));
  EXPECT_FALSE(DirectoryExists(PathOf("JOB.TQV")));
  EXPECT_EQ(GetFileSizeOf(PathOf("JOB.TQV")), 1);
  EXPECT_EQ(GetFileSizeOf(PathOf("MISSING")), -1);
  // A file another writer holds without sharing cannot be measured.
  const auto held = platform::File::OpenExclusive(PathOf("JOB.TQV"));
  ASSERT_TRUE(held.has_value());
  EXPECT_EQ(GetFileSizeOf(PathOf("JOB.TQV")), -1);
  EXPECT_FALSE(DirectoryExists(PathOf("MISSING")));
}

TEST_F(PathHelpers, CreateOneDirectoryMakesOneLevelAndDeleteAllFilesOnlyFiles) {
  EXPECT_TRUE(CreateOneDirectory(PathOf("PENDING") + "\\"));
  EXPECT_TRUE(DirectoryExists(PathOf("PENDING")));
  EXPECT_FALSE(CreateOneDirectory(PathOf("PENDING"))) << "already there";
  EXPECT_FALSE(CreateOneDirectory(PathOf("A\\B")));
  EXPECT_FALSE(Exists(PathOf("A")));

  // Deleting all files keeps subdirectories and their contents.
  WriteFile(PathOf("ONE.TIF"), "x");
  std::filesystem::create_directory(PathOf("SUB"));
  WriteFile(PathOf("SUB/INNER.TXT"), "x");
  DeleteAllFiles(Dir() + "\\");
  EXPECT_FALSE(Exists(PathOf("ONE.TIF")));
  EXPECT_TRUE(Exists(PathOf("SUB/INNER.TXT")));
  EXPECT_TRUE(Exists(WinDir()));
}

}  // namespace
}  // namespace tqv
