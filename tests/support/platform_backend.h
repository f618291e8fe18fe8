// Which platform backend the suite runs against, and the few process services the tests need from
// either operating system, so tests themselves stay free of conditionals.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file.h"

namespace tqv::testing {

#if defined(_WIN32)
inline constexpr bool kWin32Backend = true;
#else
inline constexpr bool kWin32Backend = false;
#endif

void SetEnvironment(const std::string &name, const std::string &value);
void UnsetEnvironment(const std::string &name);

// The time zone is UTC while this object lives, so local times do not depend on the machine.
class UtcTimeZone {
 public:
  UtcTimeZone();
  ~UtcTimeZone();
  UtcTimeZone(const UtcTimeZone &) = delete;
  UtcTimeZone &operator=(const UtcTimeZone &) = delete;

 private:
  std::optional<std::string> saved_;
};

// A new, empty directory under the system's temporary directory; empty on failure.
std::string MakeTemporaryDirectory();

// Windows only: replaces every value of the user's "Control Panel\International" key by the
// "name=value" lines given (none: no regional settings at all), as WIN.INI's [intl] does on POSIX.
void ReplaceRegionalRegistryValues(std::string_view intlLines);

// A shared library every system has that is not ours.
inline constexpr const char *kForeignLibrary = kWin32Backend ? "kernel32.dll" : "libm.so.6";

// Another process that opens `path` for reading with `sharing` and keeps it open until this object
// goes: a fork on POSIX, this test program started again on Windows (which has no fork).
class FileHeldByAnotherProcess {
 public:
  FileHeldByAnotherProcess(const std::string &path, platform::FileSharing sharing);
  ~FileHeldByAnotherProcess();
  FileHeldByAnotherProcess(const FileHeldByAnotherProcess &) = delete;
  FileHeldByAnotherProcess &operator=(const FileHeldByAnotherProcess &) = delete;

  // Whether the other process has the file open.
  bool Holds() const { return holds_; }

 private:
  bool holds_ = false;
  std::intptr_t process_ = -1;  // the process id, or on Windows its handle
  std::intptr_t release_ = -1;  // the pipe whose closing lets the other process end
};

// What a program run to its end left: its exit code (-1 when it could not start, did not end
// normally or ran over a minute) and its output and error text, CR LF read as LF.
struct ProgramOutcome {
  int exitCode = -1;
  std::string out;
  std::string err;
};

// Runs `program` with `arguments`, no shell between, its output caught in files in `scratchDir`.
ProgramOutcome RunProgram(const std::string &program, const std::vector<std::string> &arguments,
                          const std::string &scratchDir);

// The names a shared library exports: its dynamic symbols on POSIX, its export directory on
// Windows. Empty when the file cannot be read.
std::set<std::string> ExportedNames(const std::string &library);

// Runs `background` on a second thread while `foreground` runs on this one; returns when both have.
void RunAlongside(const std::function<void()> &background, const std::function<void()> &foreground);

}  // namespace tqv::testing

// Skips a test whose subject exists only on the POSIX backend (flock, drive variables, the
// event-log file, ELF symbols).
#define TQV_SKIP_ON_WIN32(reason) \
  if (::tqv::testing::kWin32Backend) GTEST_SKIP() << (reason)
