// An installation just large enough for gateway messages: the machine file naming a product
// directory (where the message counter lives) and the two gateway directories.
#pragma once

#include <filesystem>
#include <string>

#include "config/service_state.h"
#include "config/settings_files.h"
#include "support/temp_dir.h"

namespace tqv::testing {

class GatewayTest : public TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    ResetServiceStateForTesting();
    ResetSettingsPathsForTesting();
    for (const std::string &directory : {ProductDir(), GatewayIn(), GatewayOut(), WinDir() + "/Corvanta"})
      std::filesystem::create_directories(directory);
    WriteFile(WinDir() + "/Corvanta/TQVMSERV.INI", "[Corvanta]\r\nDirectory=" + ProductDir() + "\r\n");
    CurrentService().gatewayInDirectory = GatewayIn();
    CurrentService().gatewayOutDirectory = GatewayOut();
  }
  void TearDown() override {
    ResetServiceStateForTesting();
    ResetSettingsPathsForTesting();
    TempDirTest::TearDown();
  }

  std::string ProductDir() const { return PathOf("product"); }
  std::string GatewayIn() const { return PathOf("in"); }
  std::string GatewayOut() const { return PathOf("out"); }
  std::string CounterFile() const { return ProductDir() + "/SGW_ID.INI"; }
  std::string MessageIn(int number) const { return GatewayIn() + "/SGW" + std::to_string(number) + ".TMP"; }
};

}  // namespace tqv::testing
