// What `tqv check` asks the operating system about a directory beyond its existence: whether this
// process may create files in it, and which file system holds it. Neither answer ever fails.
#pragma once

#include <string>
#include <string_view>

namespace tqv::tool {

// True when files can be created in the existing directory (a Windows-form path).
bool IsWritableDirectory(std::string_view directory);

// The name of the file system that holds the path ("ext4", "nfs", "NTFS"), or "" when unknown.
std::string FileSystemName(std::string_view path);

// True for file systems on which locks between processes cannot be relied upon, so the exclusive
// opens that keep the library from reading half-written files may not hold.
bool IsNetworkFileSystem(std::string_view fileSystemName);

}  // namespace tqv::tool
