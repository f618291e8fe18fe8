#include "support/installation.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "host/entry_points.h"
#include "platform/profile.h"
#include "support/platform_backend.h"
#if !defined(_WIN32)
#include "platform/posix/native_path.h"
#endif

namespace tqv::testing {

void InstallationTest::SetUp() {
  TempDirTest::SetUp();
  host::ResetLibraryStateForTesting();
  std::filesystem::create_directories(ProductDir());
  std::filesystem::create_directories(GatewayIn());
  std::filesystem::create_directories(GatewayOut());
  std::filesystem::create_directories(WinDir() + "/Corvanta");
  platform::ProfileWriteString("Corvanta", "Directory", ProductDir(), WinDir() + "/Corvanta/TQVMSERV.INI");
  WriteFile(ProductDir() + "/tqstring.ini", "[English]\r\n");
  SetConfig("Directories", "GatewayIn", GatewayIn());
  SetConfig("Directories", "GatewayOut", GatewayOut());
  SetConfig("Directories", "CoverDir", ProductDir() + "\\COVER");
  SetConfig("Directories", "Voicemail", ProductDir() + "\\VOICE");
}

void InstallationTest::TearDown() {
  host::ResetLibraryStateForTesting();
  TempDirTest::TearDown();
}

std::string InstallationTest::Native(std::string_view windowsPath) {
#if defined(_WIN32)
  return std::string(windowsPath);
#else
  return platform::ToNativePath(windowsPath);
#endif
}

void InstallationTest::SetConfig(std::string_view section, std::string_view key,
                                 std::string_view value) const {
  platform::ProfileWriteString(section, key, value, ConfigFile());
}

std::vector<JobRecord> InstallationTest::PendingJobs() const {
  std::vector<JobRecord> jobs;
  for (const std::string &name : FileNames(Native(PendingDir()))) {
    if (name.ends_with(".TQV")) jobs.push_back(ReadJobFile(Native(PendingDir()) + "/" + name).value());
  }
  return jobs;
}

std::vector<std::string> InstallationTest::Messages() const {
  std::vector<std::string> names = FileNames(GatewayIn());
  // SGW9 before SGW10.
  std::stable_sort(names.begin(), names.end(),
                   [](const std::string &a, const std::string &b) { return a.size() < b.size(); });
  std::vector<std::string> messages;
  for (const std::string &name : names)
    messages.push_back(ReadFile(GatewayIn() + "/" + name));
  return messages;
}

}  // namespace tqv::testing
