// The audible signal and the pause that a failed assertion makes. Tests replace both.
#pragma once

#include <cstdint>
#include <functional>

namespace tqv::platform {

void Beep();
void SleepMilliseconds(std::uint32_t milliseconds);

// Replaces beep and sleep until reset; empty functions restore the real ones.
void SetBeepAndSleepHooks(std::function<void()> beep, std::function<void(std::uint32_t)> sleep);

}  // namespace tqv::platform
