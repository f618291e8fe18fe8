// The Windows directory of the Win32 backend, as GetWindowsDirectoryA gives it. A failed call
// gives an empty string, which makes every file under it unreachable rather than misplaced.
#include <windows.h>

#include "platform/windows_directory.h"

namespace tqv::platform {

std::string WindowsDirectory() {
  char buffer[MAX_PATH + 1] = {};
  const UINT length = ::GetWindowsDirectoryA(buffer, sizeof buffer);
  if (length == 0 || length >= sizeof buffer) return {};
  return std::string(buffer, length);
}

}  // namespace tqv::platform
