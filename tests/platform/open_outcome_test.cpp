// What an open reports about the file it reached, and what a removal does with each kind of name:
// callers act on both without looking at the file first.
#include <filesystem>
#include <string>
#include <vector>

#include "platform/file.h"
#include "platform/file_system.h"
#include "platform/special_files.h"
#include "support/platform_backend.h"
#include "support/temp_dir.h"

namespace tqv::platform {
namespace {

class OpenOutcome : public tqv::testing::TempDirTest {};

TEST_F(OpenOutcome, AHandleKnowsWhetherItsOpenMadeTheFile) {
  struct Case {
    FileCreation creation;
    bool existed;
    bool opens;
    bool created;
    std::string left;  // the file's bytes after the open
  };
  const std::vector<Case> cases = {
      {FileCreation::OpenExisting, true, true, false, "kept"},
      {FileCreation::OpenExisting, false, false, false, ""},
      {FileCreation::CreateNew, true, false, false, "kept"},
      {FileCreation::CreateNew, false, true, true, ""},
      {FileCreation::CreateAlways, true, true, false, ""},
      {FileCreation::CreateAlways, false, true, true, ""},
      {FileCreation::OpenAlways, true, true, false, "kept"},
      {FileCreation::OpenAlways, false, true, true, ""},
  };
  int index = 0;
  for (const Case &c : cases) {
    const std::string path = PathOf("case" + std::to_string(index++) + ".txt");
    if (c.existed) WriteFile(path, "kept");
    std::optional<File> file = File::Open(path, FileAccess::Write, FileSharing::None, c.creation);
    SCOPED_TRACE(path);
    ASSERT_EQ(file.has_value(), c.opens);
    if (file) {
      // The answer travels with the handle.
      const File moved = std::move(*file);
      EXPECT_EQ(moved.Created(), c.created);
    }
    file.reset();
    EXPECT_EQ(Exists(path), c.existed || c.opens);
    if (Exists(path)) {
      EXPECT_EQ(ReadFile(path), c.left);
    }
  }
  // Appending creates once, and only the creating open says so.
  EXPECT_TRUE(File::OpenForAppend(PathOf("log.txt"))->Created());
  EXPECT_FALSE(File::OpenForAppend(PathOf("log.txt"))->Created());
  WriteFile(PathOf("empty.txt"), "");
  EXPECT_FALSE(File::OpenForAppend(PathOf("empty.txt"))->Created()) << "empty is not new";
}

// A name just chosen is made as new; whatever turns out to be there is treated as CreateExclusive
// treats it, and a copy that may not replace leaves nothing behind, not even its temporary file.
TEST_F(OpenOutcome, AFreshNameIsMadeAndWhatIsThereAlreadyIsTreatedAsBefore) {
  WriteFile(PathOf("plain.txt"), "old");
  WriteFile(PathOf("held.txt"), "held");
  std::filesystem::create_directory(PathOf("directory"));
  const tqv::testing::FileHeldByAnotherProcess holder(PathOf("held.txt"), FileSharing::ReadWrite);
  ASSERT_TRUE(holder.Holds());
  struct Case {
    std::string name;
    bool opens;
    bool created;
  };
  for (const Case &c : std::vector<Case>{{"new.txt", true, true},
                                         {"plain.txt", true, false},
                                         {"held.txt", false, false},
                                         {"directory", false, false}}) {
    const std::optional<File> file = File::CreateExclusiveFresh(PathOf(c.name));
    ASSERT_EQ(file.has_value(), c.opens) << c.name;
    if (file) {
      EXPECT_EQ(file->Created(), c.created) << c.name;
    }
  }
  EXPECT_EQ(ReadFile(PathOf("plain.txt")), "");
  EXPECT_EQ(ReadFile(PathOf("held.txt")), "held");
  EXPECT_FALSE(File::CreateExclusiveFresh(PathOf("no such directory/x.txt")));

  WriteFile(PathOf("source.txt"), "source");
  EXPECT_FALSE(CopyFileTo(PathOf("source.txt"), PathOf("held.txt"), true));
  EXPECT_FALSE(CopyFileTo(PathOf("source.txt"), PathOf("directory"), true));
  EXPECT_TRUE(CopyFileTo(PathOf("source.txt"), PathOf("copy.txt"), true));
  EXPECT_FALSE(CopyFileTo(PathOf("source.txt"), PathOf("copy.txt"), true));
  EXPECT_EQ(ReadFile(PathOf("held.txt")), "held");
  EXPECT_EQ(FileNames(Dir()),
            (std::vector<std::string>{"copy.txt", "held.txt", "new.txt", "plain.txt", "source.txt"}));
}

TEST_F(OpenOutcome, RemovalTakesPlainFilesAndLinksOnly) {
  TQV_SKIP_ON_WIN32("links and FIFOs are POSIX's");
  WriteFile(PathOf("plain.txt"), "x");
  WriteFile(PathOf("target.txt"), "target");
  std::filesystem::create_symlink(PathOf("target.txt"), PathOf("link.txt"));
  std::filesystem::create_symlink(PathOf("gone.txt"), PathOf("dangling.txt"));
  std::filesystem::create_directory(PathOf("directory"));
  ASSERT_TRUE(tqv::testing::MakeFifo(PathOf("fifo")));
  WriteFile(PathOf("held.txt"), "held");
  const tqv::testing::FileHeldByAnotherProcess holder(PathOf("held.txt"), FileSharing::ReadWrite);
  ASSERT_TRUE(holder.Holds());

  struct Case {
    std::string name;
    bool removed;
  };
  for (const Case &c : std::vector<Case>{{"plain.txt", true},
                                         {"link.txt", true},
                                         {"dangling.txt", true},
                                         {"fifo", true},
                                         {"missing.txt", false},
                                         {"directory", false},
                                         {"held.txt", false}}) {
    const std::string path = PathOf(c.name);
    const bool there = std::filesystem::exists(std::filesystem::symlink_status(path));
    EXPECT_EQ(RemoveFile(path), c.removed) << c.name;
    EXPECT_EQ(std::filesystem::exists(std::filesystem::symlink_status(path)), there && !c.removed) << c.name;
  }
  EXPECT_EQ(ReadFile(PathOf("target.txt")), "target") << "a link goes, never what it leads to";
}

}  // namespace
}  // namespace tqv::platform
