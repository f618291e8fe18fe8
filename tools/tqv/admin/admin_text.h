// What `tqv admin` accepts as a value of tqvadmin.ini: command-line text made Windows-1252, and the
// checks that keep a value readable back by the library and the administration program. Each check
// gives the reason a value is refused, or an empty text.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tqv::tool {

// Valid UTF-8 (as POSIX terminals give it) becomes Windows-1252; anything else is taken as
// Windows-1252 already, as a Windows command line gives it. nullopt for a character that
// Windows-1252 cannot hold.
std::optional<std::string> DatabaseText(std::string_view argument);

// A user name: a key of the database, the first field of routing entries and a section name.
std::string UserNameProblem(std::string_view name);
// A value of at most `maxChars` characters on one line that reads back as written.
std::string ValueProblem(std::string_view value, std::size_t maxChars);

}  // namespace tqv::tool
