// What each backend supplies to the halves of the platform layer that are the same everywhere:
// the system's own tick count, beep and sleep, behind the hooks tests replace them with.
#pragma once

#include <cstdint>

namespace tqv::platform {

// Milliseconds from a monotonic clock, 32 bits, wrapping as GetTickCount does.
std::uint32_t SystemTickCount();
void SystemBeep();
void SystemSleep(std::uint32_t milliseconds);

}  // namespace tqv::platform
