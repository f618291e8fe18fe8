// Settings files as the POSIX backend replaces and finds them: mode kept under any umask, no
// rewrite that changes nothing, a forked child's own temporary names, no other spelling for a name
// that is there, and a call's reads under either form of a path seeing its own writes.
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "platform/profile.h"
#include "platform/special_files.h"
#include "support/platform_backend.h"
#include "support/temp_dir.h"

#if !defined(_WIN32)
#include <unistd.h>

#include "platform/posix/native_path.h"
#endif

namespace tqv::platform {
namespace {

class ProfileReplacement : public tqv::testing::TempDirTest {};

std::string Read(std::string_view key, const std::string &file) {
  return ProfileReadString("s", key, "", 256, file);
}

TEST_F(ProfileReplacement, AReplacedFileKeepsItsModeWhateverTheUmask) {
  TQV_SKIP_ON_WIN32("Windows files have no mode bits");
  struct Case {
    mode_t umask;
    mode_t mode;
  };
  int index = 0;
  for (const Case c : {Case{022, 0644}, Case{077, 0644}, Case{027, 0660}, Case{0, 0600}, Case{077, 0444}}) {
    const std::string path = PathOf("mode" + std::to_string(index++) + ".ini");
    WriteFile(path, "[s]\nk=1\n");
    ASSERT_EQ(::chmod(path.c_str(), c.mode), 0);
    const mode_t before = ::umask(c.umask);
    const bool written = ProfileWriteString("s", "k", "2", path);
    ::umask(before);
    ASSERT_TRUE(written);
    struct stat info {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, c.mode) << "umask " << std::oct << c.umask;
    EXPECT_EQ(Read("k", path), "2");
  }
  // A new file takes what the umask leaves, as any file made here would.
  const mode_t before = ::umask(027);
  ASSERT_TRUE(ProfileWriteString("s", "k", "1", PathOf("new.ini")));
  ::umask(before);
  struct stat info {};
  ASSERT_EQ(::stat(PathOf("new.ini").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0640u);
}

TEST_F(ProfileReplacement, AWriteThatChangesNoByteLeavesTheFileAlone) {
  TQV_SKIP_ON_WIN32("the system writes its own profile files");
  const std::string path = PathOf("same.ini");
  const auto inode = [&] {
    struct stat info {};
    EXPECT_EQ(::stat(path.c_str(), &info), 0);
    return info.st_ino;
  };
  WriteFile(path, "[s]\r\nk=1\r\n");
  const auto first = inode();
  ASSERT_TRUE(ProfileWriteString("s", "k", "1", path));
  EXPECT_EQ(inode(), first);
  // The same value in a file with other line ends is a change of bytes: the file is rewritten.
  WriteFile(path, "[s]\nk=1\n");
  ASSERT_TRUE(ProfileWriteString("s", "k", "1", path));
  EXPECT_EQ(ReadFile(path), "[s]\r\nk=1\r\n");
  ASSERT_TRUE(ProfileWriteString("s", "k", "2", path));
  EXPECT_EQ(Read("k", path), "2");
}

TEST_F(ProfileReplacement, AForkedChildNamesItsTemporaryFilesUnderItsOwnId) {
  TQV_SKIP_ON_WIN32("no fork");
#if !defined(_WIN32)
  const std::string parentName = TemporaryNameBeside(PathOf("x"), "new");
  ASSERT_NE(parentName.find("." + std::to_string(::getpid()) + "."), std::string::npos);
  const int code = tqv::testing::ExitCodeOfGuarded([&] {
    const std::string childName = TemporaryNameBeside(PathOf("x"), "new");
    return childName.find("." + std::to_string(::getpid()) + ".") != std::string::npos ? 0 : 1;
  });
  EXPECT_EQ(code, 0);
  // The child's counter write then lands beside the parent's without either losing its file.
  ASSERT_TRUE(ProfileWriteString("s", "parent", "1", PathOf("shared.ini")));
  EXPECT_EQ(tqv::testing::ExitCodeOfGuarded(
                [&] { return ProfileWriteString("s", "child", "1", PathOf("shared.ini")) ? 0 : 1; }),
            0);
  EXPECT_EQ(ReadFile(PathOf("shared.ini")), "[s]\r\nparent=1\r\nchild=1\r\n");
#endif
}

TEST_F(ProfileReplacement, AnotherSpellingNeverStandsInForANameThatIsThere) {
  TQV_SKIP_ON_WIN32("Windows file names ignore case by themselves");
  WriteFile(PathOf("CONFIG.INI"), "[s]\nk=upper\n");
  // A link leading nowhere holds its name: the file spelled otherwise is not read for it.
  std::filesystem::create_symlink(PathOf("nowhere.ini"), PathOf("Config.ini"));
  EXPECT_EQ(Read("k", PathOf("Config.ini")), "");
  EXPECT_EQ(Read("k", PathOf("config.ini")), "upper") << "a name nothing has finds it";
  // A directory under the name is there as well.
  std::filesystem::create_directory(PathOf("Other.ini"));
  WriteFile(PathOf("OTHER.INI"), "[s]\nk=file\n");
  EXPECT_EQ(Read("k", PathOf("Other.ini")), "");
}

TEST_F(ProfileReplacement, ACallSeesItsOwnWriteUnderEverySpellingOfThePath) {
  TQV_SKIP_ON_WIN32("the system keeps its own profile cache");
  std::filesystem::create_directory(PathOf("dir"));
  // The core names files the Windows way; both spellings lead to one file.
  const std::string slashes = PathOf("dir/settings.ini");
  const std::string backslashes = Dir() + "\\dir\\settings.ini";
  WriteFile(slashes, "[s]\nk=first\n");
  const ProfileCallScope scope;
  EXPECT_EQ(Read("k", backslashes), "first");
  EXPECT_EQ(Read("k", slashes), "first");
  ASSERT_TRUE(ProfileWriteString("s", "k", "second", slashes));
  EXPECT_EQ(Read("k", backslashes), "second");
  ASSERT_TRUE(ProfileWriteString("s", "k", "third", backslashes));
  EXPECT_EQ(Read("k", slashes), "third");
  // A missing file read in the call and then written is read as written.
  const std::string made = PathOf("made.ini");
  EXPECT_EQ(Read("k", made), "");
  ASSERT_TRUE(ProfileWriteString("s", "k", "new", Dir() + "\\made.ini"));
  EXPECT_EQ(Read("k", made), "new");
}

}  // namespace
}  // namespace tqv::platform
