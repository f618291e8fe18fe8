// Beep and sleep of the Win32 backend: MessageBeep and Sleep.
#include <windows.h>

#include "platform/system_primitives.h"

namespace tqv::platform {

void SystemBeep() {
  ::MessageBeep(0);
}

void SystemSleep(std::uint32_t milliseconds) {
  ::Sleep(milliseconds);
}

}  // namespace tqv::platform
