#include "platform/file_system.h"

#include <filesystem>

#include "platform/fault_injection.h"
#include "platform/file.h"
#include "platform/special_files.h"
#include "support/platform_backend.h"
#include "support/temp_dir.h"

namespace tqv::platform {
namespace {

class FileSystemTest : public tqv::testing::TempDirTest {
 protected:
  std::vector<std::string> Names(std::string_view pattern) {
    std::vector<std::string> names;
    for (const EntryInfo &entry : FindEntries(PathOf(pattern)))
      names.push_back(entry.name);
    return names;
  }
};

using NameList = std::vector<std::string>;

TEST_F(FileSystemTest, EnumerationMatchesWithoutCaseAndSortsLikeNtfs) {
  for (const char *name : {"b.TQV", "A.tqv", "c.txt", "README", "a.tqvx"})
    WriteFile(PathOf(name), "");
  WriteFile(PathOf("one.txt"), "12345");
  std::filesystem::create_directory(PathOf("Sub"));

  EXPECT_EQ(Names("*.TQV"), (NameList{"A.tqv", "b.TQV"}));
  NameList everything{".", "..", "A.tqv", "a.tqvx", "b.TQV", "c.txt", "one.txt", "README", "Sub"};
  if (!tqv::testing::kWin32Backend) everything.push_back("windows");  // the test's own Windows directory
  EXPECT_EQ(Names("*.*"), everything);
  EXPECT_TRUE(FindEntries(PathOf("missing/*.*")).empty());

  // Without wildcards it is one lookup.
  std::vector<EntryInfo> found = FindEntries(PathOf("one.txt"));
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].size, 5u);
  EXPECT_FALSE(found[0].isDirectory);
  EXPECT_FALSE(GetEntryInfo(Dir() + "/")) << "a trailing separator finds nothing, as on Windows";
}

TEST_F(FileSystemTest, CopyHonoursFailIfExistsAndHeldFilesAndNeverLeavesHalfAFile) {
  const std::string source = PathOf("source.txt");
  const std::string target = PathOf("target.txt");
  WriteFile(source, "new");
  WriteFile(target, "old");

  EXPECT_FALSE(CopyFileTo(source, target, true));
  EXPECT_EQ(ReadFile(target), "old");
  EXPECT_TRUE(CopyFileTo(source, target, false));
  EXPECT_EQ(ReadFile(target), "new");

  // A read error in the middle of the copy: no target, no temporary left behind. (Windows copies
  // in one system call, which has no middle to fail in.)
  if (!tqv::testing::kWin32Backend) {
    WriteFile(source, std::string(200000, 'x'));
    FailFileOperations(3);  // copy, open of the source, first read
    EXPECT_FALSE(CopyFileTo(source, PathOf("copy.txt"), false));
    EXPECT_FALSE(Exists(PathOf("copy.txt")));
    for (const EntryInfo &entry : FindEntries(PathOf("*.*")))
      EXPECT_EQ(entry.name.find("tqvcopy"), std::string::npos);
  }

  // A file held exclusively is neither copied, overwritten nor removed.
  const std::string held = target;
  std::optional<File> holder = File::OpenExclusive(held);
  ASSERT_TRUE(holder);
  EXPECT_FALSE(CopyFileTo(held, PathOf("copy.txt"), false));
  EXPECT_FALSE(CopyFileTo(source, held, false));
  EXPECT_FALSE(RemoveFile(held));
  holder.reset();
  EXPECT_TRUE(RemoveFile(held));
  EXPECT_FALSE(RemoveFile(Dir())) << "a directory is never removed as a file";
}

TEST_F(FileSystemTest, MoveNeverReplacesAndLeavesHeldFilesAlone) {
  const std::string source = PathOf("work.pdf");
  const std::string target = PathOf("job.pdf");
  WriteFile(source, "document");
  WriteFile(target, "taken");
  EXPECT_FALSE(MoveFileTo(source, target));
  EXPECT_EQ(ReadFile(target), "taken");
  EXPECT_EQ(ReadFile(source), "document");

  std::optional<File> holder = File::OpenExclusive(source);
  ASSERT_TRUE(holder);
  EXPECT_FALSE(MoveFileTo(source, PathOf("other.pdf")));
  holder.reset();
  EXPECT_TRUE(MoveFileTo(source, PathOf("other.pdf")));
  EXPECT_FALSE(Exists(source));
  EXPECT_EQ(ReadFile(PathOf("other.pdf")), "document");
  EXPECT_FALSE(MoveFileTo(source, PathOf("again.pdf"))) << "the source is gone";
}

TEST_F(FileSystemTest, ByteCopyRunsFromPositionToPositionAndStopsAtTheEnd) {
  const std::string bytes(300000, 'a');
  WriteFile(PathOf("from.bin"), "head" + bytes + "tail");
  std::optional<File> from = File::OpenExclusive(PathOf("from.bin"));
  std::optional<File> to = File::CreateExclusive(PathOf("to.bin"));
  ASSERT_TRUE(from && to);
  ASSERT_TRUE(from->Seek(4, SeekOrigin::Begin));
  ASSERT_TRUE(to->Write("<"));
  EXPECT_EQ(CopyBytes(*from, *to, bytes.size()), bytes.size());
  ASSERT_TRUE(to->Write(">"));
  EXPECT_EQ(CopyBytes(*from, *to, 100), 4u) << "only the tail was left";
  to.reset();
  EXPECT_EQ(ReadFile(PathOf("to.bin")), "<" + bytes + ">tail");
}

// Listings tell plain files from what only looks like one; a link that leads nowhere still holds
// its name, or a unique-name walk would pick that name and write where the link points.
TEST_F(FileSystemTest, ListingsMarkLinksAndSpecialFilesAndKeepDanglingLinks) {
  TQV_SKIP_ON_WIN32("links and FIFOs are made the POSIX way");
  WriteFile(PathOf("plain.txt"), "x");
  std::filesystem::create_symlink(PathOf("plain.txt"), PathOf("link.txt"));
  std::filesystem::create_symlink(PathOf("nowhere.txt"), PathOf("dangling.txt"));
  ASSERT_TRUE(tqv::testing::MakeFifo(PathOf("fifo.txt")));

  std::vector<std::pair<std::string, bool>> listed;
  for (const EntryInfo &entry : FindEntries(PathOf("*.txt")))
    listed.emplace_back(entry.name, entry.isRegularFile);
  EXPECT_EQ(listed,
            (std::vector<std::pair<std::string, bool>>{
                {"dangling.txt", false}, {"fifo.txt", false}, {"link.txt", false}, {"plain.txt", true}}));
  const std::optional<EntryInfo> dangling = GetEntryInfo(PathOf("dangling.txt"));
  ASSERT_TRUE(dangling);
  EXPECT_FALSE(dangling->isRegularFile);
  EXPECT_EQ(GetEntryInfo(PathOf("link.txt"))->size, 1u) << "a link describes what it leads to";
}

// A copy or move never reads a private file through a link, never writes through one at the
// target, and a removal takes the link, not the file it leads to.
TEST_F(FileSystemTest, CopyAndMoveTakePlainFilesOnlyAndRemoveTakesTheLinkItself) {
  TQV_SKIP_ON_WIN32("links need privileges on Windows");
  const std::string secret = PathOf("secret.txt");
  WriteFile(secret, "secret");
  WriteFile(PathOf("source.txt"), "new");
  std::filesystem::create_symlink(secret, PathOf("to-secret.txt"));
  std::filesystem::create_symlink(PathOf("created.txt"), PathOf("dangling.txt"));

  EXPECT_FALSE(CopyFileTo(PathOf("to-secret.txt"), PathOf("copy.txt"), false));
  EXPECT_FALSE(Exists(PathOf("copy.txt")));
  for (bool failIfExists : {true, false}) {
    EXPECT_FALSE(CopyFileTo(PathOf("source.txt"), PathOf("to-secret.txt"), failIfExists));
    EXPECT_FALSE(CopyFileTo(PathOf("source.txt"), PathOf("dangling.txt"), failIfExists));
  }
  EXPECT_FALSE(MoveFileTo(PathOf("to-secret.txt"), PathOf("moved.txt")));
  EXPECT_FALSE(std::filesystem::is_symlink(PathOf("moved.txt")));
  EXPECT_FALSE(MoveFileTo(PathOf("source.txt"), PathOf("dangling.txt")));
  EXPECT_EQ(ReadFile(secret), "secret");
  EXPECT_FALSE(Exists(PathOf("created.txt")));

  EXPECT_TRUE(RemoveFile(PathOf("to-secret.txt")));
  EXPECT_FALSE(std::filesystem::is_symlink(PathOf("to-secret.txt")));
  EXPECT_EQ(ReadFile(secret), "secret");
}

}  // namespace
}  // namespace tqv::platform
