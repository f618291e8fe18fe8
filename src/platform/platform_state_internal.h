// Reset functions of the platform layer's pieces of process-wide state, for ResetPlatformStateForTesting.
#pragma once

namespace tqv::platform {

void ResetFaultInjection();
void ResetClockSources();
void ResetBeepAndSleepHooks();
// Forgets every parsed profile file (a no-op where the system keeps the profiles).
void ClearProfileCache();

}  // namespace tqv::platform
