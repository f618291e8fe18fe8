#include "platform/file.h"

#include <sys/wait.h>
#include <unistd.h>

#include "support/temp_dir.h"

namespace tqv::platform {
namespace {

class FileTest : public tqv::testing::TempDirTest {};

// Runs `hold` in a child process that keeps what it opened until the parent has checked.
class ChildHolder {
 public:
  template <typename Hold>
  explicit ChildHolder(Hold hold) {
    int ready[2], release[2];
    EXPECT_EQ(pipe(ready), 0);
    EXPECT_EQ(pipe(release), 0);
    pid_ = fork();
    if (pid_ == 0) {
      close(ready[0]);
      close(release[1]);
      auto held = hold();
      char byte = held ? 'y' : 'n';
      [[maybe_unused]] ssize_t ignored = write(ready[1], &byte, 1);
      ignored = read(release[0], &byte, 1);
      _exit(0);
    }
    close(ready[1]);
    close(release[0]);
    char byte = 0;
    EXPECT_EQ(read(ready[0], &byte, 1), 1);
    EXPECT_EQ(byte, 'y') << "the child could not open the file";
    close(ready[0]);
    release_ = release[1];
  }
  ~ChildHolder() {
    close(release_);
    int status = 0;
    waitpid(pid_, &status, 0);
  }

 private:
  pid_t pid_ = -1;
  int release_ = -1;
};

TEST_F(FileTest, ExclusiveOpenIsRefusedWhileAnotherProcessHoldsTheFile) {
  const std::string path = PathOf("message.tmp");
  WriteFile(path, "still being written");
  {
    ChildHolder child([&] { return File::OpenExclusive(path); });
    EXPECT_FALSE(File::OpenExclusive(path));
    EXPECT_FALSE(File::OpenShared(path));
    // Creating anew must not empty a file that someone else holds.
    EXPECT_FALSE(File::CreateExclusive(path));
    EXPECT_EQ(ReadFile(path), "still being written");
  }
  EXPECT_TRUE(File::OpenExclusive(path));
  // Once free, creating new fails on the existing file and creating always empties it.
  EXPECT_FALSE(File::Open(path, FileAccess::Write, FileSharing::None, FileCreation::CreateNew));
  EXPECT_TRUE(File::CreateExclusive(path)->Write("new"));
  EXPECT_EQ(ReadFile(path), "new");

  // Shared opens coexist across processes but still keep an exclusive one out.
  ChildHolder child([&] { return File::OpenShared(path); });
  EXPECT_TRUE(File::OpenShared(path));
  EXPECT_FALSE(File::OpenExclusive(path));
}

}  // namespace
}  // namespace tqv::platform
