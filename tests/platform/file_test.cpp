#include "platform/file.h"

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

}  // namespace
}  // namespace tqv::platform
