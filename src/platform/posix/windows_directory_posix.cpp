// The Windows directory of the POSIX backend: TQVSPOOL_WINDIR, or the system-wide default.
#include <cstdlib>

#include "platform/windows_directory.h"

namespace tqv::platform {

namespace {
constexpr const char *kDefaultWindowsDirectory = "/var/lib/tqvspool";
}

std::string WindowsDirectory() {
  const char *configured = std::getenv("TQVSPOOL_WINDIR");
  std::string directory =
      configured != nullptr && *configured != '\0' ? configured : kDefaultWindowsDirectory;
  while (directory.size() > 1 && directory.back() == '/')
    directory.pop_back();
  return directory;
}

}  // namespace tqv::platform
