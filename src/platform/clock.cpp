// The clocks, each replaceable by a test; the tick count itself comes from the backend.
#include <ctime>

#include "platform/clock.h"
#include "platform/platform_state_internal.h"
#include "platform/system_primitives.h"

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
  return SystemTickCount();
}

std::int64_t CurrentTime() {
  if (Sources().currentTime) return Sources().currentTime();
  return static_cast<std::int64_t>(std::time(nullptr));
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
