#include "support/temp_dir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/platform_state.h"

namespace tqv::testing {

namespace fs = std::filesystem;

void TempDirTest::SetUp() {
  std::string pattern = (fs::temp_directory_path() / "tqvtest.XXXXXX").string();
  ASSERT_NE(mkdtemp(pattern.data()), nullptr);
  dir_ = pattern;
  winDir_ = dir_ + "/windows";
  fs::create_directory(winDir_);
  setenv("TQVSPOOL_WINDIR", winDir_.c_str(), 1);
  unsetenv("TQVSPOOL_EVENTLOG");
  platform::ResetPlatformStateForTesting();
}

void TempDirTest::TearDown() {
  platform::ResetPlatformStateForTesting();
  std::error_code ignored;
  fs::remove_all(dir_, ignored);
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

}  // namespace tqv::testing
