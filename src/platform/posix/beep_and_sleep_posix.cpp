// Beep and sleep of the POSIX backend. A daemon has no speaker, so the beep rings the terminal
// bell only when standard error is one.
#include <time.h>
#include <unistd.h>

#include <cerrno>

#include "platform/beep_and_sleep.h"
#include "platform/platform_state_internal.h"

namespace tqv::platform {

namespace {

struct Hooks {
  std::function<void()> beep;
  std::function<void(std::uint32_t)> sleep;
};

Hooks &CurrentHooks() {
  static Hooks hooks;
  return hooks;
}

}  // namespace

void Beep() {
  if (CurrentHooks().beep) return CurrentHooks().beep();
  if (::isatty(STDERR_FILENO)) {
    [[maybe_unused]] const ssize_t ignored = ::write(STDERR_FILENO, "\a", 1);
  }
}

void SleepMilliseconds(std::uint32_t milliseconds) {
  if (CurrentHooks().sleep) return CurrentHooks().sleep(milliseconds);
  struct timespec left {
    static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1000000L
  };
  while (::nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

void SetBeepAndSleepHooks(std::function<void()> beep, std::function<void(std::uint32_t)> sleep) {
  CurrentHooks() = Hooks{std::move(beep), std::move(sleep)};
}

void ResetBeepAndSleepHooks() {
  CurrentHooks() = Hooks{};
}

}  // namespace tqv::platform
