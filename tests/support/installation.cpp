#include "support/installation.h"

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

}  // namespace tqv::testing
