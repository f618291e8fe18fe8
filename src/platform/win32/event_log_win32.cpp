// The event log of the Win32 backend: the application event log through RegisterEventSourceA and
// ReportEventA. Only the NT family has one. A failed step loses the event and nothing else.
#include <windows.h>

#include <cstdio>
#include <string>

#include "platform/event_log.h"

namespace tqv::platform {

namespace {

// The longest message the event carries; longer ones are cut.
constexpr std::size_t kMaxEventMessage = 511;
constexpr DWORD kTypesSupported = EVENTLOG_ERROR_TYPE | EVENTLOG_WARNING_TYPE | EVENTLOG_INFORMATION_TYPE;

// Registers `source` for the module unless its key exists already, whose values are then left alone.
bool RegisterSourceFor(const void *module, const std::string &source) {
  char modulePath[MAX_PATH] = {};
  const DWORD pathLength =
      ::GetModuleFileNameA(static_cast<HMODULE>(const_cast<void *>(module)), modulePath, sizeof modulePath);
  if (pathLength == 0 || pathLength >= sizeof modulePath) return false;
  char keyPath[256];
  const int keyLength =
      std::snprintf(keyPath, sizeof keyPath, "SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\%s",
                    source.c_str());
  if (keyLength < 0 || static_cast<std::size_t>(keyLength) >= sizeof keyPath) return false;

  HKEY key = nullptr;
  if (::RegOpenKeyA(HKEY_LOCAL_MACHINE, keyPath, &key) == ERROR_SUCCESS) {
    ::RegCloseKey(key);
    return true;
  }
  if (::RegCreateKeyA(HKEY_LOCAL_MACHINE, keyPath, &key) != ERROR_SUCCESS) return false;
  // The value name keeps the product's historical spelling, which its other programs read.
  bool ok = ::RegSetValueExA(key, "EventMesssageFile", 0, REG_SZ, reinterpret_cast<const BYTE *>(modulePath),
                             pathLength + 1) == ERROR_SUCCESS;
  const DWORD types = kTypesSupported;
  ok = ok && ::RegSetValueExA(key, "TypesSupported", 0, REG_DWORD, reinterpret_cast<const BYTE *>(&types),
                              sizeof types) == ERROR_SUCCESS;
  ::RegCloseKey(key);
  return ok;
}

}  // namespace

void ReportEventToLog(const void *module, std::string_view source, std::uint16_t type,
                      std::string_view message) {
  RecordEvent(type, source, message);
  if ((::GetVersion() & 0x80000000u) != 0) return;  // outside the NT family: no event log
  const std::string sourceName(source);
  if (module != nullptr && !RegisterSourceFor(module, sourceName)) return;
  HANDLE eventSource = ::RegisterEventSourceA(nullptr, sourceName.c_str());
  if (eventSource == nullptr) return;
  const std::string text(message.substr(0, kMaxEventMessage));
  const char *strings[] = {text.c_str(), ""};
  ::ReportEventA(eventSource, type, 0, 0, nullptr, 2, static_cast<DWORD>(text.size() + 1), strings,
                 const_cast<char *>(text.c_str()));
  ::DeregisterEventSource(eventSource);
}

}  // namespace tqv::platform
