// The user's regional settings ("Control Panel\International" on Windows).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tqv::platform {

// The longest value that can be read; a longer one counts as unreadable.
inline constexpr std::size_t kMaxRegionalValue = 62;

// The value of one regional setting ("sShortDate", "sTimeFormat", "s1159", "s2359"), an empty
// value included; nullopt when the setting is missing or unreadable.
std::optional<std::string> ReadRegionalSetting(std::string_view name);

}  // namespace tqv::platform
