// Beep and sleep of the Win32 backend: MessageBeep and Sleep, each replaceable by a test.
#include <windows.h>

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
  ::MessageBeep(0);
}

void SleepMilliseconds(std::uint32_t milliseconds) {
  if (CurrentHooks().sleep) return CurrentHooks().sleep(milliseconds);
  ::Sleep(milliseconds);
}

void SetBeepAndSleepHooks(std::function<void()> beep, std::function<void(std::uint32_t)> sleep) {
  CurrentHooks() = Hooks{std::move(beep), std::move(sleep)};
}

void ResetBeepAndSleepHooks() {
  CurrentHooks() = Hooks{};
}

}  // namespace tqv::platform
