// The Windows directory: where the log file, the machine file and unqualified profile files live.
#pragma once

#include <string>

namespace tqv::platform {

// As GetWindowsDirectory gives it, without a trailing separator unless it is a root.
std::string WindowsDirectory();

}  // namespace tqv::platform
