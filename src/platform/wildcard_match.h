// Windows file-name pattern matching: '*' and '?', without regard to case, with the Windows
// special cases "*.*" (every name) and a trailing ".*" (also the name without an extension).
#pragma once

#include <string_view>

namespace tqv::platform {

bool MatchesWildcard(std::string_view name, std::string_view pattern);

bool HasWildcards(std::string_view text);

}  // namespace tqv::platform
