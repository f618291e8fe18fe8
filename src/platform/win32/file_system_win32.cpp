// Directory and whole-file operations of the Win32 backend: FindFirstFileA/FindNextFileA,
// CopyFileA, DeleteFileA and CreateDirectoryA. Every failure is a false or empty result. Copies
// and moves go through no reparse point at either end.
#include <windows.h>

#include <string.h>

#include <algorithm>
#include <cstdint>
#include <memory>

#include "platform/fault_injection.h"
#include "platform/file.h"
#include "platform/file_system.h"
#include "platform/wildcard_match.h"

namespace tqv::platform {

namespace {

// 100-nanosecond intervals from 1601 to 1970.
constexpr std::uint64_t kFileTimeOf1970 = 116444736000000000ull;

bool IsSeparator(char c) {
  return c == '\\' || c == '/';
}

std::int64_t SecondsSince1970(const FILETIME &time) {
  const std::uint64_t ticks = (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
  return (static_cast<std::int64_t>(ticks) - static_cast<std::int64_t>(kFileTimeOf1970)) / 10000000;
}

EntryInfo InfoFromFound(const WIN32_FIND_DATAA &found) {
  EntryInfo entry;
  entry.name = found.cFileName;
  entry.isDirectory = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  entry.isRegularFile = !entry.isDirectory && (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
  entry.size =
      entry.isDirectory ? 0 : (static_cast<std::uint64_t>(found.nFileSizeHigh) << 32) | found.nFileSizeLow;
  entry.modifiedTime = SecondsSince1970(found.ftLastWriteTime);
  return entry;
}

// A name the calls below would cut short or misread: an embedded NUL.
bool Unusable(std::string_view path) {
  return path.empty() || path.find('\0') != std::string_view::npos;
}

// A plain file: there, and neither a directory nor a reparse point (symbolic link or junction).
bool IsPlainFile(const std::string &path) {
  const DWORD attributes = ::GetFileAttributesA(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES &&
         (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) == 0;
}

// Nothing under the name, or a plain file: what a copy may replace.
bool MissingOrPlainFile(const std::string &path) {
  return ::GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES || IsPlainFile(path);
}

std::vector<EntryInfo> FindAll(const std::string &pattern) {
  std::vector<EntryInfo> entries;
  WIN32_FIND_DATAA found{};
  HANDLE search = ::FindFirstFileA(pattern.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return entries;
  do {
    entries.push_back(InfoFromFound(found));
  } while (::FindNextFileA(search, &found));
  ::FindClose(search);
  return entries;
}

}  // namespace

std::optional<EntryInfo> GetEntryInfo(std::string_view path) {
  if (Unusable(path) || IsSeparator(path.back()) || HasWildcards(path)) return std::nullopt;
  std::vector<EntryInfo> found = FindAll(std::string(path));
  if (found.empty()) return std::nullopt;
  return found.front();
}

std::vector<EntryInfo> FindEntries(std::string_view pattern) {
  if (Unusable(pattern)) return {};
  std::vector<EntryInfo> entries = FindAll(std::string(pattern));
  // The system also matches the short 8.3 names ("*.TQV" finds "a.tqvx" as "A~1.TQV"); only the
  // names themselves count.
  const std::string_view namePattern = pattern.substr(pattern.find_last_of("\\/") + 1);
  if (HasWildcards(namePattern)) {
    std::erase_if(entries, [&](const EntryInfo &entry) { return !MatchesWildcard(entry.name, namePattern); });
  }
  // NTFS lists names in this order; other file systems (and Wine's) need not.
  std::sort(entries.begin(), entries.end(), [](const EntryInfo &a, const EntryInfo &b) {
    const int folded = ::_stricmp(a.name.c_str(), b.name.c_str());
    return folded != 0 ? folded < 0 : a.name < b.name;
  });
  return entries;
}

bool CopyFileTo(std::string_view source, std::string_view target, bool failIfExists) {
  if (FileOperationMustFail()) return false;
  if (Unusable(source) || Unusable(target)) return false;
  const std::string from(source);
  const std::string to(target);
  // CopyFileA reads through a link at the source and writes through one at the target.
  if (!IsPlainFile(from) || !MissingOrPlainFile(to)) return false;
  return ::CopyFileA(from.c_str(), to.c_str(), failIfExists ? TRUE : FALSE) != 0;
}

std::optional<std::uint64_t> CopyBytes(File &from, File &to, std::uint64_t length) {
  // Windows has no copy between open handles; large pieces keep the calls few.
  constexpr std::size_t kPiece = 1 << 20;
  const auto buffer = std::make_unique<char[]>(kPiece);
  std::uint64_t done = 0;
  while (done < length) {
    const std::optional<std::size_t> got =
        from.Read(buffer.get(), static_cast<std::size_t>(std::min<std::uint64_t>(length - done, kPiece)));
    if (!got) return std::nullopt;
    if (*got == 0) break;
    if (!to.Write(buffer.get(), *got)) return std::nullopt;
    done += *got;
  }
  return done;
}

bool MoveFileTo(std::string_view source, std::string_view target) {
  if (FileOperationMustFail()) return false;
  if (Unusable(source) || Unusable(target)) return false;
  const std::string from(source);
  const std::string to(target);
  // A link would move as a link and lead the new name elsewhere: only plain files move.
  if (!IsPlainFile(from)) return false;
  return ::MoveFileA(from.c_str(), to.c_str()) != 0;
}

// DeleteFileA removes a link itself, never what it leads to.
bool RemoveFile(std::string_view path) {
  if (FileOperationMustFail()) return false;
  if (Unusable(path)) return false;
  const std::string name(path);
  return ::DeleteFileA(name.c_str()) != 0;
}

bool MakeDirectory(std::string_view path) {
  if (FileOperationMustFail()) return false;
  if (Unusable(path)) return false;
  const std::string name(path);
  return ::CreateDirectoryA(name.c_str(), nullptr) != 0;
}

}  // namespace tqv::platform
