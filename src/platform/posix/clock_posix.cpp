// The system clocks of the POSIX backend.
#include <time.h>

#include "platform/clock.h"
#include "platform/system_primitives.h"

namespace tqv::platform {

std::uint32_t SystemTickCount() {
  struct timespec now {};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  const auto milliseconds =
      static_cast<std::uint64_t>(now.tv_sec) * 1000u + static_cast<std::uint64_t>(now.tv_nsec) / 1000000u;
  return static_cast<std::uint32_t>(milliseconds);  // wraps like GetTickCount
}

std::tm LocalTime(std::int64_t time) {
  const time_t value = static_cast<time_t>(time);
  std::tm result{};
  ::localtime_r(&value, &result);
  return result;
}

}  // namespace tqv::platform
