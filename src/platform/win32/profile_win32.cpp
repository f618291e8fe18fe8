// The profile functions of the Win32 backend: the system's own GetPrivateProfileStringA,
// GetPrivateProfileIntA and WritePrivateProfileStringA, which keep their own cache.
#include <windows.h>

#include <algorithm>
#include <vector>

#include "platform/platform_state_internal.h"
#include "platform/profile.h"

namespace tqv::platform {

namespace {

// The longest value ProfileLookup reads; the system's own readers stop near here as well.
constexpr std::size_t kMaxLookup = 65536;

// Two defaults no value in a settings file plausibly holds: a key is missing only when both
// come back unchanged.
constexpr const char *kMissingMarkers[] = {"\x01tqv-missing\x02", "\x02tqv-missing\x01"};

// A C string for an optional name; null stands for "every name".
const char *OrNull(const std::optional<std::string> &text) {
  return text ? text->c_str() : nullptr;
}

std::optional<std::string> Copy(std::optional<std::string_view> text) {
  if (!text) return std::nullopt;
  return std::string(text->substr(0, text->find('\0')));
}

// The value as GetPrivateProfileStringA gives it with `defaultValue`, read in full.
std::string ReadValue(const std::string &section, const std::string &key, const char *defaultValue,
                      const std::string &file) {
  std::vector<char> buffer(256);
  for (;;) {
    const DWORD length = ::GetPrivateProfileStringA(section.c_str(), key.c_str(), defaultValue, buffer.data(),
                                                    static_cast<DWORD>(buffer.size()), file.c_str());
    if (length + 1 < buffer.size() || buffer.size() >= kMaxLookup) return std::string(buffer.data(), length);
    buffer.resize(buffer.size() * 2);
  }
}

}  // namespace

// The system keeps the profiles, and re-reads a file that changed.
void ClearProfileCache() {}

std::string ProfileReadString(std::optional<std::string_view> section, std::optional<std::string_view> key,
                              std::string_view defaultValue, std::size_t size, std::string_view file) {
  if (size == 0) return {};
  const std::optional<std::string> sectionName = Copy(section);
  const std::optional<std::string> keyName = section ? Copy(key) : std::nullopt;
  const std::string defaultText(defaultValue.substr(0, defaultValue.find('\0')));
  const std::string fileName(file);
  std::vector<char> buffer(size);
  const DWORD length =
      ::GetPrivateProfileStringA(OrNull(sectionName), OrNull(keyName), defaultText.c_str(), buffer.data(),
                                 static_cast<DWORD>(std::min<std::size_t>(size, MAXDWORD)), fileName.c_str());
  return std::string(buffer.data(), std::min<std::size_t>(length, size));
}

std::optional<std::string> ProfileLookup(std::string_view section, std::string_view key,
                                         std::string_view file) {
  const std::string sectionName(section);
  const std::string keyName(key);
  const std::string fileName(file);
  std::string value = ReadValue(sectionName, keyName, kMissingMarkers[0], fileName);
  if (value != kMissingMarkers[0]) return value;
  value = ReadValue(sectionName, keyName, kMissingMarkers[1], fileName);
  if (value != kMissingMarkers[1]) return value;
  return std::nullopt;
}

std::int32_t ProfileReadInt(std::string_view section, std::string_view key, std::int32_t defaultValue,
                            std::string_view file) {
  const std::string sectionName(section);
  const std::string keyName(key);
  const std::string fileName(file);
  return static_cast<std::int32_t>(
      ::GetPrivateProfileIntA(sectionName.c_str(), keyName.c_str(), defaultValue, fileName.c_str()));
}

bool ProfileWriteString(std::string_view section, std::optional<std::string_view> key,
                        std::optional<std::string_view> value, std::string_view file) {
  const std::string sectionName(section);
  const std::optional<std::string> keyName = Copy(key);
  const std::optional<std::string> text = key ? Copy(value) : std::nullopt;
  const std::string fileName(file);
  // Names that could not be read back are refused, as the system would write them anyway.
  if (sectionName.find(']') != std::string::npos) return false;
  if (keyName && (keyName->empty() || keyName->find('=') != std::string::npos || keyName->front() == '[' ||
                  keyName->front() == ';')) {
    return false;
  }
  if (keyName && !text) {
    // The system removes only the first line of a key; later duplicates must not surface.
    for (int line = 0; line < 64 && ProfileLookup(sectionName, *keyName, fileName); ++line) {
      if (!::WritePrivateProfileStringA(sectionName.c_str(), keyName->c_str(), nullptr, fileName.c_str()))
        return false;
    }
    return true;
  }
  return ::WritePrivateProfileStringA(sectionName.c_str(), OrNull(keyName), OrNull(text), fileName.c_str()) !=
         0;
}

// Windows reads its profile files itself and keeps what it needs.
ProfileCallScope::ProfileCallScope() = default;
ProfileCallScope::~ProfileCallScope() = default;

}  // namespace tqv::platform
