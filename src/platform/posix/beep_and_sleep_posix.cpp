// Beep and sleep of the POSIX backend. A daemon has no speaker, so the beep rings the terminal
// bell only when standard error is one.
#include <time.h>
#include <unistd.h>

#include <cerrno>

#include "platform/system_primitives.h"

namespace tqv::platform {

void SystemBeep() {
  if (::isatty(STDERR_FILENO)) {
    [[maybe_unused]] const ssize_t ignored = ::write(STDERR_FILENO, "\a", 1);
  }
}

void SystemSleep(std::uint32_t milliseconds) {
  struct timespec left {
    static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1000000L
  };
  while (::nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

}  // namespace tqv::platform
