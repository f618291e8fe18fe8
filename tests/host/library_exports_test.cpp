// Loads the built library as a fax service does: by name at run time, through the C entry points
// and the record layout of the public header.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <set>

#include "support/installation.h"
#include "support/platform_backend.h"
#include "tqv/host/host_library.h"
#include "tqvspool.h"

namespace tqv {
namespace {

TEST(LibraryExports, ExactlyTheTenEntryPoints) {
  const std::set<std::string> entryPoints = {
      "S_Initialise",           "S_Shutdown",    "S_GetNumUsers", "S_FaxPending",           "S_FaxSent",
      "S_CreateReceiveFaxFile", "S_FaxReceived", "S_Scan",        "S_ScannedEventAccepted", "S_JfaxReady"};
  EXPECT_EQ(testing::ExportedNames(TQV_LIBRARY_PATH), entryPoints);
}

class LoadedLibrary : public testing::InstallationTest {};

// A job the host gives back comes out of the next scan as it went in, under its new file name, and
// is gone once taken over.
TEST_F(LoadedLibrary, PendingJobComesBackFromScanAndIsTakenOver) {
  std::string error;
  std::optional<tool::HostLibrary> library = tool::HostLibrary::Load(TQV_LIBRARY_PATH, error);
  ASSERT_TRUE(library) << error;
  const tool::EntryPoints &entries = library->Entries();

  ASSERT_EQ(entries.initialise(0, nullptr), 0);
  std::array<unsigned char, TQV_JOB_RECORD_SIZE> job{};
  std::copy_n(TQV_JOB_TAG_FAX, 9, job.begin());
  job[TQV_JOB_RECORD_SIZE_FIELD] = TQV_JOB_RECORD_SIZE & 0xFF;
  job[TQV_JOB_RECORD_SIZE_FIELD + 1] = TQV_JOB_RECORD_SIZE >> 8;
  std::copy_n("C:\\OLD\\00000001.TQV", 20, &job[TQV_JOB_JOB_FILE]);
  ASSERT_EQ(entries.faxPending(job.data()), 0);
  const std::string jobFile(reinterpret_cast<const char *>(&job[TQV_JOB_JOB_FILE]));
  EXPECT_TRUE(jobFile.starts_with(PendingDir() + "\\") && jobFile.ends_with(".TQV")) << jobFile;
  EXPECT_EQ(ReadFile(Native(jobFile)), std::string(job.begin(), job.end()))
      << "stored as the host left it, with its new file name";

  std::array<unsigned char, TQV_JOB_RECORD_SIZE> scanned{};
  EXPECT_EQ(entries.scan(0, scanned.data()), 0) << "a due job waits while the host does not want due jobs";
  EXPECT_EQ(entries.scan(1, scanned.data()), 1);
  EXPECT_EQ(scanned, job);
  EXPECT_EQ(entries.scannedEventAccepted(scanned.data()), 1);
  EXPECT_FALSE(Exists(Native(jobFile)));
  EXPECT_EQ(entries.scannedEventAccepted(scanned.data()), 0) << "the file is already gone";
  EXPECT_EQ(entries.scan(1, scanned.data()), 0);
  EXPECT_EQ(entries.scan(1, nullptr), 0) << "a null buffer is refused, not dereferenced";

  // Given back twice, the job is stored twice: the host removes the first through the acceptance.
  ASSERT_EQ(entries.faxPending(job.data()), 0);
  ASSERT_EQ(entries.faxPending(job.data()), 0);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(Native(PendingDir())), {}), 2);
  EXPECT_EQ(entries.shutdown(), 0);
}

}  // namespace
}  // namespace tqv
