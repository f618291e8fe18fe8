// One reset for every piece of the platform layer's process-wide state.
#include "platform/platform_state.h"

#include "platform/platform_state_internal.h"

namespace tqv::platform {

void ResetPlatformStateForTesting() {
  ResetFaultInjection();
  ResetClockSources();
  ResetBeepAndSleepHooks();
  ClearProfileCache();
}

}  // namespace tqv::platform
