// The two clocks the system reads: a millisecond tick count and the wall clock. Tests replace them.
#pragma once

#include <cstdint>
#include <ctime>
#include <functional>

namespace tqv::platform {

// Milliseconds from a monotonic clock, 32 bits, wrapping as GetTickCount does.
std::uint32_t TickCount();

// Seconds since 1 January 1970.
std::int64_t CurrentTime();

// The broken-down local time of a wall-clock time.
std::tm LocalTime(std::int64_t time);

// Replaces a clock until reset; an empty function restores the real one.
void SetTickCountSource(std::function<std::uint32_t()> source);
void SetCurrentTimeSource(std::function<std::int64_t()> source);

}  // namespace tqv::platform
