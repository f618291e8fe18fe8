// Maps the Windows-form paths the core works with to POSIX paths, at the system-call boundary.
#pragma once

#include <string>
#include <string_view>

namespace tqv::platform {

// "\" becomes "/"; a drive prefix "X:" is replaced by the value of TQVSPOOL_DRIVE_X when that
// variable is set, and dropped otherwise.
std::string ToNativePath(std::string_view windowsPath);

// A hidden name in the target's directory, unique in this process and among processes, under
// which a file is made before it is given the target's name ("tag" says what for).
std::string TemporaryNameBeside(const std::string &nativeTarget, std::string_view tag);

}  // namespace tqv::platform
