// Beep and sleep, each replaceable by a test; the real ones come from the backend.
#include "platform/beep_and_sleep.h"

#include "platform/platform_state_internal.h"
#include "platform/system_primitives.h"

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
  SystemBeep();
}

void SleepMilliseconds(std::uint32_t milliseconds) {
  if (CurrentHooks().sleep) return CurrentHooks().sleep(milliseconds);
  SystemSleep(milliseconds);
}

void SetBeepAndSleepHooks(std::function<void()> beep, std::function<void(std::uint32_t)> sleep) {
  CurrentHooks() = Hooks{std::move(beep), std::move(sleep)};
}

void ResetBeepAndSleepHooks() {
  CurrentHooks() = Hooks{};
}

}  // namespace tqv::platform
