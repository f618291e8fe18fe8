// A complete installation in a temporary directory: the machine file, the product directory with
// its settings and string file, and the two gateway directories.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "common/job_record.h"
#include "support/temp_dir.h"

namespace tqv::testing {

class InstallationTest : public TempDirTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  std::string ProductDir() const { return PathOf("product"); }
  std::string GatewayIn() const { return PathOf("gw/in"); }
  std::string GatewayOut() const { return PathOf("gw/out"); }
  std::string PendingDir() const { return GatewayOut() + "\\PENDING"; }
  std::string ConfigFile() const { return ProductDir() + "/tqvconfg.ini"; }

  // The file-system path of a Windows-form path the library reports.
  static std::string Native(std::string_view windowsPath);
  void SetConfig(std::string_view section, std::string_view key, std::string_view value) const;

  // The job files of the pending directory, in name order.
  std::vector<JobRecord> PendingJobs() const;
  // The message files of the gateway-in directory in the order they were numbered.
  std::vector<std::string> Messages() const;
};

}  // namespace tqv::testing
