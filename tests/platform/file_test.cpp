#include "platform/file.h"

#include <atomic>
#include <string>
#include <vector>

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

}  // namespace
}  // namespace tqv::platform
