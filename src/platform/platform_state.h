// The process-wide state of the platform layer: replaced clocks and hooks, injected faults and the
// profile cache, all reset by one call.
#pragma once

namespace tqv::platform {

void ResetPlatformStateForTesting();

}  // namespace tqv::platform
