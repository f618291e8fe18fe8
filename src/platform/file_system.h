// Whole-file and directory operations of the operating system, at the level the system uses them.
// Paths are Windows-form strings; the backend maps them. Failures are results, never exceptions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tqv::platform {

class File;

struct EntryInfo {
  std::string name;  // the last component, as stored on disk
  bool isDirectory = false;
  // A plain file, not reached through a link: links, FIFOs, devices and sockets are listed but
  // false here, and input passes skip them without opening them.
  bool isRegularFile = false;
  std::uint64_t size = 0;
  std::int64_t modifiedTime = 0;  // seconds since 1970
};

// One lookup of one path (no directory scan). A path that ends in a separator finds nothing,
// as FindFirstFile finds nothing for it.
std::optional<EntryInfo> GetEntryInfo(std::string_view path);

// The entries of a directory that a Windows pattern ("dir\*.TQV", "dir\*.*") matches, without
// regard to case, sorted by name without regard to case. "." and ".." are included when the
// pattern matches them. A pattern without wildcards is one lookup of that path.
// An unreadable or missing directory gives an empty list.
std::vector<EntryInfo> FindEntries(std::string_view pattern);

// Copies a file. With failIfExists an existing target is left alone and the copy fails.
// A failed copy never leaves a partial file under the target name.
bool CopyFileTo(std::string_view source, std::string_view target, bool failIfExists);

// Gives a file a new name on the same volume, as MoveFile does: fails when the target exists, the
// source is held by another handle, or the two lie on different volumes (the caller then copies).
bool MoveFileTo(std::string_view source, std::string_view target);

// Copies up to `length` bytes from the position of `from` to the position of `to`, moving both on:
// the kernel's copy where the system has one, so large documents need not pass through the
// process. Fewer bytes only when `from` ends first; nullopt when a read or a write failed (what was
// copied before stays written).
std::optional<std::uint64_t> CopyBytes(File &from, File &to, std::uint64_t length);

// Deletes a file (never a directory).
bool RemoveFile(std::string_view path);

// Creates one directory; its parent must exist.
bool MakeDirectory(std::string_view path);

}  // namespace tqv::platform
