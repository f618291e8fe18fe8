// The users of the fax server: the key names of section [Recipient List], walked with one
// process-wide cursor, and their full names. A missing database has no users.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tqv {

// The key names are read with a buffer of this size; names beyond it are not seen.
inline constexpr std::size_t kUserListSize = 16380;

// Reads the user names afresh and gives the first; nullopt when there are none.
std::optional<std::string> FirstUser();
// The name after the current one; nullopt at the end, and before any FirstUser.
std::optional<std::string> NextUser();
// Nothing to release.
void EndUsers();

// The user's [Recipient List] value, or the user name when there is none; at most size-1
// characters.
std::string GetUserFullName(std::string_view user, std::size_t size);

// Makes the user one of the users, or gives a user a new full name. False when the file could
// not be written.
bool SetUserFullName(std::string_view user, std::string_view fullName);
// Takes the user out of every per-user section and removes the user's own section with its saved
// files list, defaults and blocked numbers. Stored files and routing entries are left alone.
// False when the file could not be written.
bool RemoveUser(std::string_view user);

}  // namespace tqv
