// Directory and whole-file operations of the POSIX backend. Every failure is a false or empty
// result; a failed copy removes its temporary file, so the target name never shows half a file.
// Copies and moves take plain files only and never write through a link at the target.
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include <strings.h>

#include "platform/fault_injection.h"
#include "platform/file.h"
#include "platform/file_system.h"
#include "platform/posix/native_path.h"
#include "platform/wildcard_match.h"

namespace tqv::platform {

namespace {

bool IsSeparator(char c) {
  return c == '\\' || c == '/';
}

EntryInfo InfoFromStat(std::string name, const struct stat &info) {
  EntryInfo entry;
  entry.name = std::move(name);
  entry.isDirectory = S_ISDIR(info.st_mode);
  entry.size = entry.isDirectory ? 0 : static_cast<std::uint64_t>(info.st_size);
  entry.modifiedTime = static_cast<std::int64_t>(info.st_mtime);
  return entry;
}

std::string_view LastComponent(std::string_view path) {
  const std::size_t cut = path.find_last_of("\\/");
  return cut == std::string_view::npos ? path : path.substr(cut + 1);
}

// True when some other open handle holds the file (with or without sharing), as Windows
// refuses to delete or overwrite such a file; `missing` tells that nothing has the name. Only a plain file
// can be held: a link, FIFO or device is not opened through, so probing one neither blocks nor touches what
// it leads to.
bool HeldByAnother(const std::string &nativePath, bool *missing = nullptr) {
  const int fd = ::open(nativePath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY);
  if (missing) *missing = fd < 0 && errno == ENOENT;
  if (fd < 0) return false;
  struct stat info {};
  const bool held = ::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && ::flock(fd, LOCK_EX | LOCK_NB) != 0 &&
                    errno == EWOULDBLOCK;
  ::close(fd);
  return held;
}

bool WriteAll(int target, const char *bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t written = ::write(target, bytes, size);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes += written;
    size -= static_cast<std::size_t>(written);
  }
  return true;
}

// Up to `length` bytes from the position of `from` to the position of `target`; fewer only at the
// end of `from`, nullopt on a failed read or write.
std::optional<std::uint64_t> CopyRange(File &from, int target, std::uint64_t length) {
  const int source = static_cast<int>(from.NativeHandle());
  std::uint64_t done = 0;
  // The kernel copies without passing the bytes through this process, as cp does; file systems
  // that cannot (or a kernel without the call) take the loop below.
  while (done < length) {
    // Each piece counts as a read, so injected faults hit this path as they hit the loop below.
    if (FileOperationMustFail()) return std::nullopt;
    const auto piece = static_cast<std::size_t>(std::min<std::uint64_t>(length - done, std::size_t{1} << 30));
    const ssize_t copied = ::copy_file_range(source, nullptr, target, nullptr, piece, 0);
    if (copied == 0) return done;
    if (copied > 0) {
      done += static_cast<std::uint64_t>(copied);
      continue;
    }
    if (errno == EINTR) continue;
    if (errno != ENOSYS && errno != EXDEV && errno != EINVAL && errno != EOPNOTSUPP) return std::nullopt;
    break;
  }
  char buffer[65536];
  while (done < length) {
    const std::optional<std::size_t> got =
        from.Read(buffer, static_cast<std::size_t>(std::min<std::uint64_t>(length - done, sizeof buffer)));
    if (!got) return std::nullopt;
    if (*got == 0) break;
    if (!WriteAll(target, buffer, *got)) return std::nullopt;
    done += *got;
  }
  return done;
}

}  // namespace

// What a directory entry is. A link describes what it leads to, as on Windows, but is never a
// regular file; a link that leads nowhere is still listed, so that its name counts as taken.
std::optional<EntryInfo> DescribeEntry(int directoryFd, const char *name, std::string shownName) {
  struct stat itself {};
  if (::fstatat(directoryFd, name, &itself, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
  struct stat target {};
  const bool isLink = S_ISLNK(itself.st_mode);
  const bool followed = isLink && ::fstatat(directoryFd, name, &target, 0) == 0;
  EntryInfo entry = InfoFromStat(std::move(shownName), followed ? target : itself);
  entry.isRegularFile = S_ISREG(itself.st_mode);
  return entry;
}

std::optional<EntryInfo> GetEntryInfo(std::string_view path) {
  if (path.empty() || IsSeparator(path.back())) return std::nullopt;
  const std::string nativePath = ToNativePath(path);
  if (nativePath.empty()) return std::nullopt;
  return DescribeEntry(AT_FDCWD, nativePath.c_str(), std::string(LastComponent(path)));
}

std::vector<EntryInfo> FindEntries(std::string_view pattern) {
  const std::string_view namePattern = LastComponent(pattern);
  if (!HasWildcards(namePattern)) {
    std::optional<EntryInfo> single = GetEntryInfo(pattern);
    return single ? std::vector<EntryInfo>{*single} : std::vector<EntryInfo>{};
  }
  std::string directory = ToNativePath(pattern.substr(0, pattern.size() - namePattern.size()));
  // Assigned, not built from a literal in place: GCC 12 at -O3 warns falsely (-Wrestrict) there.
  if (directory.empty()) directory.assign(1, '.');

  std::vector<EntryInfo> entries;
  DIR *stream = ::opendir(directory.c_str());
  if (stream == nullptr) return entries;
  const int directoryFd = ::dirfd(stream);
  while (const struct dirent *found = ::readdir(stream)) {
    if (!MatchesWildcard(found->d_name, namePattern)) continue;
    // One that vanished since the listing is simply not there.
    if (std::optional<EntryInfo> entry = DescribeEntry(directoryFd, found->d_name, found->d_name))
      entries.push_back(std::move(*entry));
  }
  ::closedir(stream);
  std::sort(entries.begin(), entries.end(), [](const EntryInfo &a, const EntryInfo &b) {
    const int folded = ::strcasecmp(a.name.c_str(), b.name.c_str());
    return folded != 0 ? folded < 0 : a.name < b.name;
  });
  return entries;
}

std::optional<std::uint64_t> CopyBytes(File &from, File &to, std::uint64_t length) {
  return CopyRange(from, static_cast<int>(to.NativeHandle()), length);
}

bool CopyFileTo(std::string_view source, std::string_view target, bool failIfExists) {
  if (FileOperationMustFail()) return false;
  const std::string nativeTarget = ToNativePath(target);
  if (nativeTarget.empty()) return false;
  std::optional<File> input = File::OpenShared(source);
  if (!input) return false;
  // Only a plain file is replaced: a link planted at the target name is refused, not replaced,
  // so a caller that checks the name afterwards never reads through it.
  // With failIfExists no look first: link() below refuses any name that is there.
  struct stat existing {};
  if (!failIfExists && ::lstat(nativeTarget.c_str(), &existing) == 0 &&
      (!S_ISREG(existing.st_mode) || HeldByAnother(nativeTarget)))
    return false;

  // The copy is made under a temporary name and only then given the target name.
  const std::string temporary = TemporaryNameBeside(nativeTarget, "copy");
  const int out = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (out < 0) return false;
  bool ok = CopyRange(*input, out, UINT64_MAX).has_value();
  ok = ::close(out) == 0 && ok;
  if (ok) {
    if (failIfExists) {
      // link() refuses an existing name, so a target that appeared meanwhile is never replaced.
      ok = ::link(temporary.c_str(), nativeTarget.c_str()) == 0;
    } else {
      ok = ::rename(temporary.c_str(), nativeTarget.c_str()) == 0;
    }
  }
  ::unlink(temporary.c_str());
  return ok;
}

bool MoveFileTo(std::string_view source, std::string_view target) {
  if (FileOperationMustFail()) return false;
  const std::string from = ToNativePath(source);
  const std::string to = ToNativePath(target);
  struct stat info {};
  // A link would move as a link and lead the new name elsewhere: only plain files move.
  if (from.empty() || to.empty() || ::lstat(from.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
  if (HeldByAnother(from)) return false;
  // link() refuses an existing target, which rename() would replace.
  if (::link(from.c_str(), to.c_str()) != 0) return false;
  ::unlink(from.c_str());
  return true;
}

// A link goes itself, never what it leads to, so a planted one can be cleared out of the way. No
// look first: the probe for another holder tells a missing name, and unlink refuses a directory.
bool RemoveFile(std::string_view path) {
  if (FileOperationMustFail()) return false;
  const std::string nativePath = ToNativePath(path);
  bool missing = false;
  if (nativePath.empty() || HeldByAnother(nativePath, &missing) || missing) return false;
  return ::unlink(nativePath.c_str()) == 0;
}

bool MakeDirectory(std::string_view path) {
  if (FileOperationMustFail()) return false;
  std::string nativePath = ToNativePath(path);
  while (nativePath.size() > 1 && nativePath.back() == '/')
    nativePath.pop_back();
  return !nativePath.empty() && ::mkdir(nativePath.c_str(), 0777) == 0;
}

}  // namespace tqv::platform
