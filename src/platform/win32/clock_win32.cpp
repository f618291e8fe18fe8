// The system clocks of the Win32 backend: GetTickCount and the C runtime's local time.
#include <windows.h>

#include <ctime>

#include "platform/clock.h"
#include "platform/system_primitives.h"

namespace tqv::platform {

std::uint32_t SystemTickCount() {
  return static_cast<std::uint32_t>(::GetTickCount());
}

std::tm LocalTime(std::int64_t time) {
  const std::time_t value = static_cast<std::time_t>(time);
  std::tm result{};
  ::localtime_s(&result, &value);
  return result;
}

}  // namespace tqv::platform
