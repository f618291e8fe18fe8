// The clocks of the POSIX backend, each replaceable by a test.
#include <time.h>

#include "platform/clock.h"
#include "platform/platform_state_internal.h"

namespace tqv::platform {

namespace {

struct ClockSources {
  std::function<std::uint32_t()> tickCount;
  std::function<std::int64_t()> currentTime;
};

ClockSources &Sources() {
  static ClockSources sources;
  return sources;
}

}  // namespace

std::uint32_t TickCount() {
  if (Sources().tickCount) return Sources().tickCount();
  struct timespec now {};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  const auto milliseconds =
      static_cast<std::uint64_t>(now.tv_sec) * 1000u + static_cast<std::uint64_t>(now.tv_nsec) / 1000000u;
  return static_cast<std::uint32_t>(milliseconds);  // wraps like GetTickCount
}

std::int64_t CurrentTime() {
  if (Sources().currentTime) return Sources().currentTime();
  return static_cast<std::int64_t>(::time(nullptr));
}

std::tm LocalTime(std::int64_t time) {
  const time_t value = static_cast<time_t>(time);
  std::tm result{};
  ::localtime_r(&value, &result);
  return result;
}

void SetTickCountSource(std::function<std::uint32_t()> source) {
  Sources().tickCount = std::move(source);
}

void SetCurrentTimeSource(std::function<std::int64_t()> source) {
  Sources().currentTime = std::move(source);
}

void ResetClockSources() {
  Sources() = ClockSources{};
}

}  // namespace tqv::platform
