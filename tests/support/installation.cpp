#include "support/installation.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>

#include "host/entry_points.h"
#include "platform/clock.h"
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
  platform::SetTickCountSource([this] { return tick; });
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

int InstallationTest::ScanLater(std::int32_t dueJobsFlag, void *job) {
  tick += 20000;
  std::array<unsigned char, kJobRecordSize> buffer{};
  return host::Scan(dueJobsFlag, job != nullptr ? job : buffer.data());
}

void InstallationTest::AddFaxingSender(std::string_view section, int properties) const {
  std::filesystem::create_directories(ProductDir() + "/COVER");
  WriteFile(ProductDir() + "/COVER/memo.rtf", "{\\rtf memo}");
  WriteFile(ProductDir() + "/tqvadmin.ini",
            "[Recipient List]\r\nann@example.com=Ann Example\r\n[Recipients Properties]\r\nann@example.com=" +
                std::to_string(properties) + "\r\n[ann@example.com]\r\nT_00000=TEMPLATE," + ProductDir() +
                "/COVER/memo.rtf\r\nDefaultTemplate=TEMPLATE\r\n" + std::string(section));
}

JobRecord InstallationTest::FaxJob(std::string_view sender, std::string_view faxNumber,
                                   std::uint32_t status) {
  JobRecord record = JobRecord::WithTag(kFaxJobTag);
  record.View().SetText(job::SenderEmail, sender);
  record.View().SetText(job::FaxNumber, faxNumber);
  record.View().SetNumber(job::Status, status);
  return record;
}

}  // namespace tqv::testing
