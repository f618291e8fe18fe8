#include "support/temp_dir.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "platform/event_log.h"
#include "platform/platform_state.h"
#include "platform/windows_directory.h"
#include "support/platform_backend.h"

namespace tqv::testing {

namespace fs = std::filesystem;

namespace {

std::set<std::string> NamesIn(const std::string &directory) {
  std::set<std::string> names;
  std::error_code failed;
  for (const fs::directory_entry &entry : fs::directory_iterator(directory, failed))
    names.insert(entry.path().filename().string());
  return names;
}

}  // namespace

void TempDirTest::SetUp() {
  dir_ = MakeTemporaryDirectory();
  ASSERT_FALSE(dir_.empty());
  if (kWin32Backend) {
    // The system's own Windows directory (a private Wine prefix's): what a test adds there goes
    // again in TearDown.
    winDir_ = platform::WindowsDirectory();
    winDirNames_ = NamesIn(winDir_);
    ReplaceRegionalRegistryValues("");
  } else {
    winDir_ = dir_ + "/windows";
    fs::create_directory(winDir_);
    SetEnvironment("TQVSPOOL_WINDIR", winDir_);
    // Events would reach syslog otherwise; tests read them from the recorder.
    SetEnvironment("TQVSPOOL_EVENTLOG", "/dev/null");
  }
  platform::ResetPlatformStateForTesting();
  events_.clear();
  platform::SetEventRecorder([this](std::uint16_t type, std::string_view source, std::string_view message) {
    const std::string event = std::to_string(type) + '\t' + std::string(source) + '\t' + std::string(message);
    std::istringstream lines(event + '\n');
    for (std::string line; std::getline(lines, line);) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      events_.push_back(line);
    }
  });
}

void TempDirTest::TearDown() {
  platform::SetEventRecorder(nullptr);
  platform::ResetPlatformStateForTesting();
  UnsetEnvironment("TQVSPOOL_EVENTLOG");
  std::error_code ignored;
  if (kWin32Backend) {
    for (const std::string &name : NamesIn(winDir_)) {
      if (!winDirNames_.contains(name)) fs::remove_all(fs::path(winDir_) / name, ignored);
    }
  }
  fs::remove_all(dir_, ignored);
}

void TempDirTest::WriteRegionalSettings(std::string_view intlLines) const {
  if (kWin32Backend) {
    ReplaceRegionalRegistryValues(intlLines);
  } else {
    WriteFile(winDir_ + "/WIN.INI", "[intl]\r\n" + std::string(intlLines));
  }
}

std::string TempDirTest::PathOf(std::string_view name) const {
  return dir_ + "/" + std::string(name);
}

void TempDirTest::WriteFile(std::string_view path, std::string_view bytes) const {
  std::ofstream out{std::string(path), std::ios::binary | std::ios::trunc};
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string TempDirTest::ReadFile(std::string_view path) const {
  std::ifstream in{std::string(path), std::ios::binary};
  std::ostringstream buffer;
  buffer << in.rdbuf();
  return buffer.str();
}

bool TempDirTest::Exists(std::string_view path) const {
  return fs::exists(fs::path(std::string(path)));
}

std::vector<std::string> TempDirTest::FileNames(std::string_view directory) const {
  std::vector<std::string> names;
  for (const fs::directory_entry &entry : fs::directory_iterator(fs::path(std::string(directory))))
    if (entry.is_regular_file()) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace tqv::testing
