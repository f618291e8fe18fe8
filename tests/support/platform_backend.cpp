#include "support/platform_backend.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <random>

#if defined(_WIN32)
#include <stdlib.h>
#include <windows.h>

#include <vector>
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

void ReplaceRegionalRegistryValues([[maybe_unused]] std::string_view intlLines) {
#if defined(_WIN32)
  HKEY key = nullptr;
  if (::RegCreateKeyExA(HKEY_CURRENT_USER, "Control Panel\\International", 0, nullptr, 0, KEY_ALL_ACCESS,
                        nullptr, &key, nullptr) != ERROR_SUCCESS) {
    return;
  }
  std::vector<std::string> names;
  char name[256];
  for (DWORD index = 0;; ++index) {
    DWORD length = sizeof name;
    if (::RegEnumValueA(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
      break;
    names.emplace_back(name, length);
  }
  for (const std::string &old : names)
    ::RegDeleteValueA(key, old.c_str());
  const auto trim = [](std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return std::string();
    return std::string(text.substr(first, text.find_last_not_of(" \t") - first + 1));
  };
  while (!intlLines.empty()) {
    std::string_view line = intlLines.substr(0, intlLines.find('\n'));
    intlLines.remove_prefix(std::min(intlLines.size(), line.size() + 1));
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || line.starts_with('[')) continue;
    const std::string valueName = trim(line.substr(0, equals));
    const std::string value = trim(line.substr(equals + 1));
    ::RegSetValueExA(key, valueName.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE *>(value.c_str()),
                     static_cast<DWORD>(value.size() + 1));
  }
  ::RegCloseKey(key);
#endif
}

}  // namespace tqv::testing
