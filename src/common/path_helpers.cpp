// Path and directory helpers on top of the platform file system. Every failure is a result; a
// path longer than a path buffer is cut before use, as the fixed buffers always cut it.
#include "common/path_helpers.h"

#include "common/text_limits.h"
#include "platform/file.h"
#include "platform/file_system.h"
#include "platform/wildcard_match.h"

namespace tqv {

namespace {

bool IsSeparator(char c) {
  return c == '\\' || c == '/';
}

// The path as a directory operation sees it: cut to a path buffer, one trailing separator off.
std::string DirectoryOperand(std::string_view path) {
  std::string operand(path);
  CutText(operand, kMaxPath);
  if (!operand.empty() && IsSeparator(operand.back())) operand.pop_back();
  return operand;
}

}  // namespace

std::string &AppendBackslash(std::string &path) {
  if (!path.empty() && IsSeparator(path.back())) return path;
  if (path.size() < kMaxPath) path.push_back('\\');
  return path;
}

bool FileExists(std::string_view path) {
  // A plain name is one lookup: scanning the directory would cost a pass over every entry.
  if (!platform::HasWildcards(path)) return platform::GetEntryInfo(path).has_value();
  return !platform::FindEntries(path).empty();
}

bool DirectoryExists(std::string_view path) {
  const std::string operand = DirectoryOperand(path);
  if (!platform::HasWildcards(operand)) {
    const auto info = platform::GetEntryInfo(operand);
    return info.has_value() && info->isDirectory;
  }
  // A pattern answers by the first entry found, as the first match of a directory search would.
  const auto entries = platform::FindEntries(operand);
  return !entries.empty() && entries.front().isDirectory;
}

bool CreateOneDirectory(std::string_view path) {
  return platform::MakeDirectory(DirectoryOperand(path));
}

void DeleteAllFiles(std::string_view directory) {
  std::string prefix(directory);
  AppendBackslash(prefix);
  for (const auto &entry : platform::FindEntries(prefix + "*.*")) {
    // "." and ".." and subdirectories are directories: deleting them would fail anyway.
    if (entry.isDirectory) continue;
    const std::string path = prefix + entry.name;
    // A cut name would be another file's name; such a file cannot be reached through a path buffer.
    if (path.size() > kMaxPath) continue;
    platform::RemoveFile(path);
  }
}

std::int64_t GetFileSizeOf(std::string_view path) {
  auto file = platform::File::OpenShared(path);
  if (!file) return -1;
  const auto size = file->Size();
  if (!size) return -1;
  return static_cast<std::int64_t>(*size);
}

}  // namespace tqv
