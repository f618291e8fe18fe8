#include "platform/file.h"

#include <sys/wait.h>
#include <unistd.h>

#include "platform/fault_injection.h"
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
}

TEST_F(FileTest, SharedOpensCoexistButExcludeAnExclusiveOne) {
  const std::string path = PathOf("log.txt");
  WriteFile(path, "x");
  ChildHolder child([&] { return File::OpenShared(path); });
  EXPECT_TRUE(File::OpenShared(path));
  EXPECT_FALSE(File::OpenExclusive(path));
}

TEST_F(FileTest, ExclusiveHandlesConflictWithinOneProcessToo) {
  const std::string path = PathOf("job.tqv");
  std::optional<File> first = File::CreateExclusive(path);
  ASSERT_TRUE(first);
  EXPECT_FALSE(File::OpenExclusive(path));
  first.reset();
  EXPECT_TRUE(File::OpenExclusive(path));
}

TEST_F(FileTest, CreationModes) {
  const std::string path = PathOf("a.bin");
  EXPECT_FALSE(File::OpenExclusive(path)) << "open existing only";
  ASSERT_TRUE(File::Open(path, FileAccess::Write, FileSharing::None, FileCreation::CreateNew));
  EXPECT_FALSE(File::Open(path, FileAccess::Write, FileSharing::None, FileCreation::CreateNew));
  WriteFile(path, "old contents");
  {
    std::optional<File> file = File::CreateExclusive(path);
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->Write("new"));
  }
  EXPECT_EQ(ReadFile(path), "new");
  {
    std::optional<File> file = File::OpenForAppend(path);
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->Write("+more"));
  }
  EXPECT_EQ(ReadFile(path), "new+more");
  EXPECT_TRUE(File::OpenForAppend(PathOf("created.txt")));
  EXPECT_TRUE(Exists(PathOf("created.txt")));
}

TEST_F(FileTest, ADirectoryCannotBeOpenedAsAFile) {
  EXPECT_FALSE(File::OpenShared(Dir()));
  EXPECT_FALSE(File::OpenExclusive(Dir()));
}

TEST_F(FileTest, ReadSeekSizeAndWindowsFormPaths) {
  WriteFile(PathOf("data.bin"), "0123456789");
  // The core hands over backslash paths; the backend maps them.
  std::string windowsForm = PathOf("data.bin");
  for (char &c : windowsForm)
    c = c == '/' ? '\\' : c;
  std::optional<File> file = File::OpenExclusive(windowsForm);
  ASSERT_TRUE(file);
  EXPECT_EQ(file->Size(), 10u);
  EXPECT_EQ(file->Seek(-3, SeekOrigin::End), 7u);
  char buffer[8] = {};
  EXPECT_EQ(file->Read(buffer, sizeof buffer), 3u);
  EXPECT_EQ(std::string(buffer, 3), "789");
  EXPECT_EQ(file->Read(buffer, sizeof buffer), 0u);
  file->Seek(2, SeekOrigin::Begin);
  EXPECT_EQ(file->ReadAll(4), "2345");
}

TEST_F(FileTest, InjectedFaultsFailTheChosenOperationsOnly) {
  const std::string path = PathOf("f.txt");
  FailFileOperations(2);  // the open succeeds, the first write fails, the next works again
  std::optional<File> file = File::CreateExclusive(path);
  ASSERT_TRUE(file);
  EXPECT_FALSE(file->Write("lost"));
  EXPECT_TRUE(file->Write("kept"));
  EXPECT_EQ(FileOperationCount(), 3u);
  file.reset();
  EXPECT_EQ(ReadFile(path), "kept");

  FailFileOperations(1, 2);
  EXPECT_FALSE(File::OpenShared(path));
  EXPECT_FALSE(File::OpenShared(path));
  EXPECT_TRUE(File::OpenShared(path));
}

}  // namespace
}  // namespace tqv::platform
