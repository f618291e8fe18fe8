// A complete installation in a temporary directory: the machine file, the product directory with
// its settings and string file, and the two gateway directories.
#pragma once

#include <cstdint>
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

  // One scan call as the fax service makes it, 20 seconds after the last, so the conversion passes
  // run; the scan's record lands in `job` when one is given. What the scan returned.
  int ScanLater(std::int32_t dueJobsFlag = 0, void *job = nullptr);
  // ann@example.com, who may fax (and more, by `properties`) with a default template; `section`
  // adds lines to her section.
  void AddFaxingSender(std::string_view section = "", int properties = 7425) const;
  // A fax job of `sender` to `faxNumber` with the status the fax service gave it.
  static JobRecord FaxJob(std::string_view sender, std::string_view faxNumber, std::uint32_t status = 0);

  std::uint32_t tick = 1000;  // the tick count the library reads
};

}  // namespace tqv::testing
