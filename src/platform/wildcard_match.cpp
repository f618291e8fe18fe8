// Windows file-name pattern matching. Pure string work; it cannot fail.
#include "platform/wildcard_match.h"

#include <cctype>

namespace tqv::platform {

namespace {

char Fold(char c) {
  return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

// Classic '*' and '?' matching, iterative with one backtrack point, so long names cannot blow the stack.
bool GlobMatch(std::string_view name, std::string_view pattern) {
  std::size_t n = 0, p = 0;
  std::size_t starP = std::string_view::npos, starN = 0;
  while (n < name.size()) {
    if (p < pattern.size() && (pattern[p] == '?' || Fold(pattern[p]) == Fold(name[n]))) {
      ++n;
      ++p;
    } else if (p < pattern.size() && pattern[p] == '*') {
      starP = p++;
      starN = n;
    } else if (starP != std::string_view::npos) {
      p = starP + 1;
      n = ++starN;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*')
    ++p;
  return p == pattern.size();
}

}  // namespace

bool HasWildcards(std::string_view text) {
  return text.find_first_of("*?") != std::string_view::npos;
}

bool MatchesWildcard(std::string_view name, std::string_view pattern) {
  if (pattern == "*" || pattern == "*.*") return true;
  if (GlobMatch(name, pattern)) return true;
  // "NAME.*" also finds "NAME", and "*." finds names without an extension, as on Windows.
  if (pattern.size() >= 2 && pattern.ends_with(".*"))
    return GlobMatch(name, pattern.substr(0, pattern.size() - 2));
  if (pattern.size() >= 2 && pattern.back() == '.' && name.find('.') == std::string_view::npos) {
    return GlobMatch(name, pattern.substr(0, pattern.size() - 1));
  }
  return false;
}

}  // namespace tqv::platform
