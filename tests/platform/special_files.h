// Special files for tests of what the library does when it meets them, and a guard that turns a
// call that would block forever into a failed test. POSIX only: callers skip on the Win32 backend
// before they get here, so there these do nothing.
#pragma once

#include <cerrno>
#include <functional>
#include <string>

#if !defined(_WIN32)
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace tqv::testing {

inline bool MakeFifo(const std::string &path) {
#if defined(_WIN32)
  (void)path;
  return false;
#else
  return ::mkfifo(path.c_str(), 0600) == 0;
#endif
}

// Runs `probe` in a child process that an alarm ends after `seconds`; its result is the child's
// exit code, -1 when the child hung or crashed. What the probe writes to disk stays; what it
// changes in memory does not.
inline int ExitCodeOfGuarded(const std::function<int()> &probe, unsigned seconds = 10) {
#if defined(_WIN32)
  (void)seconds;
  return probe();
#else
  const pid_t child = ::fork();
  if (child < 0) return -1;
  if (child == 0) {
    ::alarm(seconds);
    ::_exit(probe());
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0)
    if (errno != EINTR) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
}

}  // namespace tqv::testing
