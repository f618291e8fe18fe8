// The clocks of the Win32 backend: GetTickCount and the C runtime's wall clock, each replaceable
// by a test.
#include <windows.h>

#include <ctime>

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
  return static_cast<std::uint32_t>(::GetTickCount());
}

std::int64_t CurrentTime() {
  if (Sources().currentTime) return Sources().currentTime();
  return static_cast<std::int64_t>(std::time(nullptr));
}

std::tm LocalTime(std::int64_t time) {
  const std::time_t value = static_cast<std::time_t>(time);
  std::tm result{};
  ::localtime_s(&result, &value);
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
