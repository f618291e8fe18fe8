// Regional settings of the Win32 backend: the user's "Control Panel\International" registry key.
// A missing key or value, a value of another type or one too long reads as no setting.
#include <windows.h>

#include "platform/regional_settings.h"

namespace tqv::platform {

std::optional<std::string> ReadRegionalSetting(std::string_view name) {
  HKEY key = nullptr;
  if (::RegOpenKeyExA(HKEY_CURRENT_USER, "Control Panel\\International", 0, KEY_QUERY_VALUE, &key) !=
      ERROR_SUCCESS) {
    return std::nullopt;
  }
  const std::string valueName(name);
  char buffer[kMaxRegionalValue + 1] = {};
  DWORD type = 0;
  DWORD size = sizeof buffer;
  const LONG status =
      ::RegQueryValueExA(key, valueName.c_str(), nullptr, &type, reinterpret_cast<BYTE *>(buffer), &size);
  ::RegCloseKey(key);
  if (status != ERROR_SUCCESS || type != REG_SZ) return std::nullopt;
  // The stored size counts the terminating NUL when there is one; the text ends at the first NUL.
  std::string value(buffer, size);
  value.resize(value.find('\0') == std::string::npos ? value.size() : value.find('\0'));
  return value;
}

}  // namespace tqv::platform
