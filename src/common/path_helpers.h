// Path and directory helpers every subsystem uses. Paths are Windows-form strings; "/" counts as a
// separator wherever "\" does. Failures are results (false, -1); nothing throws or logs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tqv {

// Appends one "\" unless the path already ends with a separator; an empty path becomes "\".
// A path already kMaxPath characters long is left as it is.
std::string &AppendBackslash(std::string &path);

// True when anything exists under the path: a file or a directory, or, for a wildcard pattern,
// at least one matching entry.
bool FileExists(std::string_view path);

// True only for an existing directory; one trailing separator is ignored.
bool DirectoryExists(std::string_view path);

// Creates this one directory (never its parents); one trailing separator is ignored.
// Callers check the outcome with DirectoryExists.
bool CreateOneDirectory(std::string_view path);

// Deletes every file directly in the directory. Subdirectories stay, and there is no recursion;
// a file that cannot be deleted is left behind without notice.
void DeleteAllFiles(std::string_view directory);

// The size in bytes, or -1 when the file cannot be opened (also when another process holds it
// without sharing) or its size cannot be read.
std::int64_t GetFileSizeOf(std::string_view path);

}  // namespace tqv
