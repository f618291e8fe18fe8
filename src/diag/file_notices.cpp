// Remembers which files were already noticed. Nothing here can fail.
#include "diag/file_notices.h"

#include <cstddef>
#include <set>
#include <string>

namespace tqv {

namespace {

// Enough for every odd file an installation could hold; past it, forgetting costs one repeat.
constexpr std::size_t kNoticesKept = 4096;

std::set<std::string> &Noticed() {
  static std::set<std::string> noticed;
  return noticed;
}

std::string Folded(std::string_view path) {
  std::string folded(path);
  for (char &c : folded) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (c == '/') c = '\\';
  }
  return folded;
}

}  // namespace

bool FirstNoticeOf(std::string_view path) {
  std::set<std::string> &noticed = Noticed();
  if (noticed.size() >= kNoticesKept) noticed.clear();
  return noticed.insert(Folded(path)).second;
}

void ResetFileNoticesForTesting() {
  Noticed().clear();
}

}  // namespace tqv
