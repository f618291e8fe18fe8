#include "platform/file.h"

#include <atomic>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/special_files.h"
#include "support/platform_backend.h"
#include "support/temp_dir.h"

namespace tqv::platform {
namespace {

using tqv::testing::FileHeldByAnotherProcess;

class FileTest : public tqv::testing::TempDirTest {};

TEST_F(FileTest, ExclusiveOpenIsRefusedWhileAnotherProcessHoldsTheFile) {
  const std::string path = PathOf("message.tmp");
  WriteFile(path, "still being written");
  {
    const FileHeldByAnotherProcess writer(path, FileSharing::None);
    ASSERT_TRUE(writer.Holds());
    EXPECT_FALSE(File::OpenExclusive(path));
    EXPECT_FALSE(File::OpenShared(path));
    // Creating anew must not empty a file that someone else holds.
    EXPECT_FALSE(File::CreateExclusive(path));
  }
  EXPECT_EQ(ReadFile(path), "still being written");
  EXPECT_TRUE(File::OpenExclusive(path));
  // Once free, creating new fails on the existing file and creating always empties it.
  EXPECT_FALSE(File::Open(path, FileAccess::Write, FileSharing::None, FileCreation::CreateNew));
  EXPECT_TRUE(File::CreateExclusive(path)->Write("new"));
  EXPECT_EQ(ReadFile(path), "new");

  // Shared opens coexist across processes but still keep an exclusive one out.
  {
    const FileHeldByAnotherProcess reader(path, FileSharing::ReadWrite);
    ASSERT_TRUE(reader.Holds());
    EXPECT_TRUE(File::OpenShared(path));
    EXPECT_FALSE(File::OpenExclusive(path));
  }
  // And a file held here without sharing keeps the other process out.
  const std::optional<File> held = File::OpenExclusive(path);
  ASSERT_TRUE(held);
  EXPECT_FALSE(FileHeldByAnotherProcess(path, FileSharing::ReadWrite).Holds());
}

// A reader of a shared directory takes whatever it can open without sharing, so a new file must
// already be held when its name appears: a reader that got in first would take it empty and make
// its writer fail. The reader here waits for each name in turn while the writer keeps every file.
TEST_F(FileTest, ANewFileIsHeldFromTheMomentItsNameAppears) {
  constexpr int kFiles = 200;
  const auto name = [this](int i) { return PathOf("MSG" + std::to_string(i) + ".TMP"); };
  std::atomic<int> created{0};
  std::atomic<int> taken{0};
  std::vector<File> files;
  tqv::testing::RunAlongside(
      [&] {
        for (int i = 0; i < kFiles; ++i)
          while (created.load() <= i)
            if (File::OpenExclusive(name(i))) ++taken;
      },
      [&] {
        for (int i = 0; i < kFiles; ++i) {
          std::optional<File> file =
              File::Open(name(i), FileAccess::Write, FileSharing::None, FileCreation::CreateNew);
          if (file) files.push_back(std::move(*file));
          created = i + 1;
        }
      });
  EXPECT_EQ(files.size(), static_cast<std::size_t>(kFiles));
  EXPECT_EQ(taken.load(), 0);
}

// Anyone may drop a FIFO into a shared directory: an open that waited for its other end would stop
// the library for good. Every kind of open gives up at once, with or without a writer there.
TEST_F(FileTest, AFifoIsRefusedAtOnceByEveryOpen) {
  TQV_SKIP_ON_WIN32("FIFOs are POSIX files");
  const std::string fifo = PathOf("MSG1.TMP");
  ASSERT_TRUE(tqv::testing::MakeFifo(fifo));
  const int opened = tqv::testing::ExitCodeOfGuarded([&] {
    int count = 0;
    for (FileCreation creation :
         {FileCreation::OpenExisting, FileCreation::OpenAlways, FileCreation::CreateAlways})
      for (FileAccess access : {FileAccess::Read, FileAccess::Write, FileAccess::ReadWrite})
        count += File::Open(fifo, access, FileSharing::ReadWrite, creation).has_value();
    count += File::OpenForAppend(fifo).has_value();
    count +=
        File::Open(fifo, FileAccess::Read, FileSharing::None, FileCreation::OpenExisting, FinalLink::Follow)
            .has_value();
    return count;
  });
  EXPECT_EQ(opened, 0) << "-1: an open blocked";
}

// A link planted in a shared directory must not let a read or a write reach the file it leads to,
// whether that file exists or not. Settings files alone may be opened through one.
TEST_F(FileTest, OpensNeverGoThroughALinkUnlessAskedTo) {
  TQV_SKIP_ON_WIN32("links need privileges on Windows; the reparse-point checks run there untested here");
  const std::string outside = PathOf("private.txt");
  WriteFile(outside, "private");
  const std::string link = PathOf("ORDER.ERR");
  std::filesystem::create_symlink(outside, link);
  const std::string dangling = PathOf("ORDER.OK");
  std::filesystem::create_symlink(PathOf("created.txt"), dangling);

  for (const std::string &path : {link, dangling}) {
    EXPECT_FALSE(File::OpenShared(path)) << path;
    EXPECT_FALSE(File::OpenExclusive(path)) << path;
    EXPECT_FALSE(File::CreateExclusive(path)) << path;
    EXPECT_FALSE(File::OpenForAppend(path)) << path;
    EXPECT_FALSE(File::Open(path, FileAccess::Write, FileSharing::None, FileCreation::CreateNew)) << path;
  }
  EXPECT_EQ(ReadFile(outside), "private");
  EXPECT_FALSE(Exists(PathOf("created.txt")));
  EXPECT_TRUE(std::filesystem::is_symlink(link)) << "the link itself stays as it was";

  std::optional<File> followed = File::Open(link, FileAccess::Read, FileSharing::ReadWrite,
                                            FileCreation::OpenExisting, FinalLink::Follow);
  ASSERT_TRUE(followed);
  EXPECT_EQ(followed->ReadAll(), "private");
}

}  // namespace
}  // namespace tqv::platform
