// The default cover page and template of a user: keys DefaultCover and DefaultTemplate of the
// user's section, naming an entry of the user's C_ or T_ list. Missing or empty means no default.
#pragma once

#include <cstddef>
#include <string_view>

#include "config/saved_files.h"

namespace tqv {

// True with the default's name and path, each cut to its buffer size. False when there is no
// default (name empty) or no entry has its name (name holds it, path empty).
bool GetDefaultCover(std::string_view user, std::size_t nameSize, std::size_t pathSize, SavedFile &file);
bool GetDefaultTemplate(std::string_view user, std::size_t nameSize, std::size_t pathSize, SavedFile &file);

// Stores the name as given when an entry has it (in any case); an empty name removes the
// default. False, with nothing written, when no entry has the name.
bool SetDefaultCover(std::string_view user, std::string_view name);
bool SetDefaultTemplate(std::string_view user, std::string_view name);

}  // namespace tqv
