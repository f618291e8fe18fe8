// Unique file names from the clock or from a wanted name. Only lookups, no file is created; when
// a path buffer leaves no room for the varying part, the cut name is returned as it is.
#include "common/unique_name.h"

#include <cstdint>
#include <cstdio>
#include <unordered_map>

#include "common/path_helpers.h"
#include "common/text_limits.h"
#include "platform/clock.h"

namespace tqv {

namespace {

// Base names stay within the eight characters of the old short file names where they can.
constexpr std::size_t kShortBaseName = 8;

struct SplitPath {
  std::string driveAndDirectory;  // everything up to and including the last separator
  std::string baseName;
  std::string extension;  // from the last "." of the file name on, dot included
};

SplitPath Split(const std::string &path) {
  // A drive prefix "X:" without a separator ("C:NAME.TXT") still belongs before the file name.
  std::size_t nameStart = (path.size() >= 2 && path[1] == ':') ? 2 : 0;
  const std::size_t lastSeparator = path.find_last_of("\\/");
  if (lastSeparator != std::string::npos && lastSeparator + 1 > nameStart) nameStart = lastSeparator + 1;

  SplitPath parts;
  parts.driveAndDirectory = path.substr(0, nameStart);
  const std::string name = path.substr(nameStart);
  const std::size_t dot = name.rfind('.');
  parts.baseName = name.substr(0, dot);
  if (dot != std::string::npos) parts.extension = name.substr(dot);
  return parts;
}

// The next base name to try for counter value `digits`.
std::string NumberedBaseName(std::string baseName, const std::string &digits) {
  if (digits.size() < kShortBaseName && baseName.size() < kShortBaseName - digits.size()) {
    // A digit 1 to 8 at the end is taken for the previous counter value and replaced.
    const char last = baseName.empty() ? '\0' : baseName.back();
    if (last >= '1' && last <= '8') baseName.pop_back();
    return baseName + digits;
  }
  // No room: the counter overwrites the end of the first eight characters.
  const std::size_t keep = digits.size() < kShortBaseName ? kShortBaseName - digits.size() : 0;
  CutText(baseName, keep);
  return baseName + digits;
}

// Where the last walk past taken names ended, per directory and extension. Only a hint: the
// name found there is checked again before it is handed out.
struct ProbeState {
  std::uint32_t start = 0;  // the clock value the walk began at
  std::uint32_t free = 0;   // the first number found free
};

std::unordered_map<std::string, ProbeState> &ProbeStates() {
  static std::unordered_map<std::string, ProbeState> states;
  // Directories come and go in a long-running host; a stale hint costs one extra walk.
  if (states.size() > 64) states.clear();
  return states;
}

}  // namespace

std::string MakeUniqueName(std::string_view directory, std::string_view extension,
                           const std::set<std::string> *handedOut) {
  const auto taken = [&](const std::string &name) {
    return FileExists(name) || (handedOut != nullptr && handedOut->contains(name));
  };
  // The clock as a 32-bit number: the name has room for eight hexadecimal digits only.
  const auto start = static_cast<std::uint32_t>(platform::CurrentTime());
  const auto nameFor = [&](std::uint32_t number) {
    std::string name(directory);
    AppendBackslash(name);
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08lX", static_cast<unsigned long>(number));
    name += digits;
    if (!extension.empty()) {
      if (extension.front() != '.') name.push_back('.');
      name += extension;
    }
    return CutText(name, kMaxPath);
  };

  std::string name = nameFor(start);
  if (!taken(name)) return name;

  // Thousands of names taken in a few seconds (a message to many recipients) would make each probe
  // walk past all the earlier ones, and the names run ahead of the clock: while the clock is still
  // inside the stretch the last walk passed, continue from where that walk ended.
  std::string key(directory);
  key.push_back('|');
  key += extension;
  ProbeState &probe = ProbeStates()[key];
  const bool insideLastWalk = start - probe.start < probe.free - probe.start;
  std::uint32_t number = insideLastWalk ? probe.free : start + 1;
  std::string previous = std::move(name);
  while (true) {
    name = nameFor(number);
    // The same name twice means the cut took every digit: no other name can come.
    if (name == previous || !taken(name)) break;
    previous = std::move(name);
    ++number;
  }
  probe = {start, number};
  return name;
}

void ResetUniqueNamesForTesting() {
  ProbeStates().clear();
}

std::string MakeUniqueVariant(std::string_view wantedPath) {
  std::string name(wantedPath);
  CutText(name, kMaxPath);
  if (!FileExists(name)) return name;

  for (std::uint64_t counter = 1;; ++counter) {
    // Each step renumbers the previous candidate, not the wanted name; hence the names run
    // AB9, AB910, AB91011, AB910112 once the short counter no longer fits.
    const SplitPath parts = Split(name);
    // With no room left for the file name, every candidate is the same: searching is endless.
    if (parts.driveAndDirectory.size() >= kMaxPath) return name;
    std::string next =
        parts.driveAndDirectory + NumberedBaseName(parts.baseName, std::to_string(counter)) + parts.extension;
    CutText(next, kMaxPath);
    if (!FileExists(next)) return next;
    name = std::move(next);
  }
}

}  // namespace tqv
