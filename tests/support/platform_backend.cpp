#include "support/platform_backend.h"

#include <cstdlib>
#include <filesystem>
#include <random>

#if defined(_WIN32)
#include <stdlib.h>
#endif

namespace tqv::testing {

namespace fs = std::filesystem;

void SetEnvironment(const std::string &name, const std::string &value) {
#if defined(_WIN32)
  _putenv_s(name.c_str(), value.c_str());
#else
  setenv(name.c_str(), value.c_str(), 1);
#endif
}

void UnsetEnvironment(const std::string &name) {
#if defined(_WIN32)
  _putenv_s(name.c_str(), "");
#else
  unsetenv(name.c_str());
#endif
}

std::string MakeTemporaryDirectory() {
#if defined(_WIN32)
  std::random_device seed;
  std::mt19937 random(seed());
  for (int attempt = 0; attempt < 100; ++attempt) {
    const fs::path candidate = fs::temp_directory_path() / ("tqvtest." + std::to_string(random()));
    std::error_code failed;
    if (fs::create_directory(candidate, failed)) return candidate.string();
  }
  return {};
#else
  std::string pattern = (fs::temp_directory_path() / "tqvtest.XXXXXX").string();
  return mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
#endif
}

}  // namespace tqv::testing
