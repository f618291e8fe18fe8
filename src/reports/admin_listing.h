// The listing that answers every remote-administration request: what the administration
// database holds for the user (saved files with their sizes, defaults, resolution, fax header),
// after the error text when there is one. Built from the database as it is; it cannot fail.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tqv {

// The listing is built in a buffer of this many bytes, NUL included; a longer one is cut.
inline constexpr std::size_t kAdminListingSize = 8192;
// A list adds no further entries once the text holds this many characters, so the sections that
// follow still fit.
inline constexpr std::size_t kAdminListingFullMark = 7991;

std::string FormatAdminListing(std::string_view user, std::string_view errorText);

}  // namespace tqv
