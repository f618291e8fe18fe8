// Loads the built library as a fax service does: by name at run time, through the C entry points.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <set>
#include <sstream>

#include "support/installation.h"
#include "tqvspool.h"

namespace tqv {
namespace {

const std::set<std::string> kEntryPoints = {
    "S_Initialise",           "S_Shutdown",    "S_GetNumUsers", "S_FaxPending",           "S_FaxSent",
    "S_CreateReceiveFaxFile", "S_FaxReceived", "S_Scan",        "S_ScannedEventAccepted", "S_JfaxReady"};

TEST(LibraryExports, ExactlyTheTenEntryPoints) {
  std::unique_ptr<FILE, int (*)(FILE *)> nm(popen("nm -D --defined-only " TQV_LIBRARY_PATH, "r"), pclose);
  ASSERT_TRUE(nm);
  std::set<std::string> exported;
  std::array<char, 512> line{};
  while (fgets(line.data(), line.size(), nm.get())) {
    std::istringstream fields(line.data());
    std::string address, type, name;
    if (fields >> address >> type >> name) exported.insert(name);
  }
  EXPECT_EQ(exported, kEntryPoints);
}

class LoadedLibrary : public testing::InstallationTest {};

TEST_F(LoadedLibrary, HostQueuesScansAndAcceptsAJob) {
  void *library = dlopen(TQV_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  auto initialise = reinterpret_cast<decltype(&S_Initialise)>(dlsym(library, "S_Initialise"));
  auto pending = reinterpret_cast<decltype(&S_FaxPending)>(dlsym(library, "S_FaxPending"));
  auto scan = reinterpret_cast<decltype(&S_Scan)>(dlsym(library, "S_Scan"));
  auto accepted =
      reinterpret_cast<decltype(&S_ScannedEventAccepted)>(dlsym(library, "S_ScannedEventAccepted"));
  auto shutdown = reinterpret_cast<decltype(&S_Shutdown)>(dlsym(library, "S_Shutdown"));
  ASSERT_TRUE(initialise && pending && scan && accepted && shutdown);

  ASSERT_EQ(initialise(0, nullptr), 0);
  std::array<unsigned char, TQV_JOB_RECORD_SIZE> job{};
  std::copy_n(TQV_JOB_TAG_FAX, 9, job.begin());
  job[TQV_JOB_RECORD_SIZE_FIELD] = TQV_JOB_RECORD_SIZE & 0xFF;
  job[TQV_JOB_RECORD_SIZE_FIELD + 1] = TQV_JOB_RECORD_SIZE >> 8;
  ASSERT_EQ(pending(job.data()), 0);
  const std::string jobFile(reinterpret_cast<const char *>(&job[TQV_JOB_JOB_FILE]));
  EXPECT_TRUE(Exists(Native(jobFile)));

  std::array<unsigned char, TQV_JOB_RECORD_SIZE> scanned{};
  EXPECT_EQ(scan(0, scanned.data()), 0) << "a due job waits while the host does not want due jobs";
  EXPECT_EQ(scan(1, scanned.data()), 1);
  EXPECT_EQ(scanned, job);
  EXPECT_NE(accepted(scanned.data()), 0);
  EXPECT_FALSE(Exists(Native(jobFile)));
  EXPECT_EQ(scan(1, nullptr), 0) << "a null buffer is refused, not dereferenced";
  EXPECT_EQ(shutdown(), 0);
  dlclose(library);
}

}  // namespace
}  // namespace tqv
