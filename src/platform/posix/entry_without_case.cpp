// Looks a name up in a directory without regard to case: one stat while the directory is
// unchanged, a scan when it changed. A directory that cannot be read answers "none".
#include "platform/posix/entry_without_case.h"
#include "platform/posix/file_stamp.h"

#include <dirent.h>
#include <sys/stat.h>

#include <ctime>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace tqv::platform {

namespace {

// Enough for the few directories settings files live in; beyond it the cache starts afresh.
constexpr std::size_t kMaxCachedDirectories = 16;

std::string Folded(std::string_view name) {
  std::string folded(name);
  for (char &c : folded)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return folded;
}

struct Scan {
  FileStamp stamp;
  std::map<std::string, std::string> byFoldedName;  // the first name in byte order for each
};

struct ScanCache {
  std::mutex mutex;
  std::unordered_map<std::string, Scan> scans;  // by native directory
};

ScanCache &Cache() {
  static ScanCache cache;
  return cache;
}

std::optional<Scan> ScanDirectory(const std::string &nativeDirectory, const FileStamp &stamp) {
  const std::unique_ptr<DIR, int (*)(DIR *)> directory(::opendir(nativeDirectory.c_str()), ::closedir);
  if (!directory) return std::nullopt;
  Scan scan{stamp, {}};
  while (const dirent *entry = ::readdir(directory.get())) {
    const std::string name = entry->d_name;
    auto [slot, added] = scan.byFoldedName.emplace(Folded(name), name);
    if (!added && name < slot->second) slot->second = name;
  }
  return scan;
}

}  // namespace

std::optional<std::string> FindEntryWithoutCase(const std::string &nativeDirectory, std::string_view name) {
  struct stat info {};
  if (::stat(nativeDirectory.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) return std::nullopt;
  const FileStamp stamp = StampFrom(info);
  const std::string folded = Folded(name);
  const auto answer = [&](const Scan &scan) -> std::optional<std::string> {
    const auto found = scan.byFoldedName.find(folded);
    if (found == scan.byFoldedName.end()) return std::nullopt;
    return found->second;
  };

  ScanCache &cache = Cache();
  const std::lock_guard lock(cache.mutex);
  if (const auto kept = cache.scans.find(nativeDirectory);
      kept != cache.scans.end() && kept->second.stamp == stamp)
    return answer(kept->second);
  std::optional<Scan> scan = ScanDirectory(nativeDirectory, stamp);
  if (!scan) return std::nullopt;
  std::optional<std::string> result = answer(*scan);
  // A name added within the timestamp tick of the scan would leave the stamp as it is: a directory
  // changed in the last seconds is scanned again next time.
  if (stamp.changedSeconds < std::time(nullptr) - 2) {
    if (cache.scans.size() >= kMaxCachedDirectories && !cache.scans.contains(nativeDirectory))
      cache.scans.clear();
    cache.scans[nativeDirectory] = std::move(*scan);
  } else {
    cache.scans.erase(nativeDirectory);
  }
  return result;
}

void ClearEntryWithoutCaseCache() {
  ScanCache &cache = Cache();
  const std::lock_guard lock(cache.mutex);
  cache.scans.clear();
}

}  // namespace tqv::platform
