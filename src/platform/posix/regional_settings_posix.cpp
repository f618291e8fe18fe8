// Regional settings of the POSIX backend: section [intl] of WIN.INI in the Windows directory,
// where both the registry key and the profile section lead. A missing file reads as no settings.
#include "platform/profile.h"
#include "platform/regional_settings.h"

namespace tqv::platform {

namespace {
constexpr std::string_view kRegionalFile = "WIN.INI";
constexpr std::string_view kRegionalSection = "intl";
}  // namespace

std::optional<std::string> ReadRegionalSetting(std::string_view name) {
  std::optional<std::string> value = ProfileLookup(kRegionalSection, name, kRegionalFile);
  if (!value || value->size() > kMaxRegionalValue) return std::nullopt;
  return value;
}

}  // namespace tqv::platform
