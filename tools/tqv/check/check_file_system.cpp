// The file-system questions of `tqv check`, one small function per backend.
#include "tqv/check/check_file_system.h"

#include <array>
#include <cstdint>
#include <cstdio>

#if defined(_WIN32)
#include <io.h>
#include <windows.h>
#else
#include <sys/vfs.h>
#include <unistd.h>

#include "platform/posix/native_path.h"
#endif

namespace tqv::tool {

#if defined(_WIN32)

bool IsWritableDirectory(std::string_view directory) {
  // The read-only attribute is all that _access sees; access lists need a probe file, which a
  // check must not leave in a gateway directory.
  return _access(std::string(directory).c_str(), 2) == 0;
}

std::string FileSystemName(std::string_view path) {
  char volume[MAX_PATH + 1] = {};
  if (!GetVolumePathNameA(std::string(path).c_str(), volume, sizeof volume)) return {};
  char name[MAX_PATH + 1] = {};
  if (!GetVolumeInformationA(volume, nullptr, 0, nullptr, nullptr, nullptr, name, sizeof name)) return {};
  return name;
}

#else

bool IsWritableDirectory(std::string_view directory) {
  return access(platform::ToNativePath(directory).c_str(), W_OK | X_OK) == 0;
}

std::string FileSystemName(std::string_view path) {
  struct KnownFileSystem {
    std::uint32_t magic;
    const char *name;
  };
  // The magic numbers of <linux/magic.h> for the file systems a fax server is likely to use.
  static constexpr std::array<KnownFileSystem, 14> kKnown = {{
      {0xEF53, "ext4"},
      {0x58465342, "xfs"},
      {0x9123683E, "btrfs"},
      {0x2FC12FC1, "zfs"},
      {0x01021994, "tmpfs"},
      {0x794C7630, "overlay"},
      {0x6969, "nfs"},
      {0xFF534D42, "cifs"},
      {0xFE534D42, "smb2"},
      {0x517B, "smb"},
      {0x65735546, "fuse"},
      {0x4D44, "vfat"},
      {0x5346544E, "ntfs"},
      {0x01021997, "9p"},
  }};
  struct statfs info {};
  if (statfs(platform::ToNativePath(path).c_str(), &info) != 0) return {};
  const auto magic = static_cast<std::uint32_t>(info.f_type);
  for (const KnownFileSystem &known : kKnown)
    if (known.magic == magic) return known.name;
  char hex[16];
  std::snprintf(hex, sizeof hex, "0x%X", static_cast<unsigned>(magic));
  return hex;
}

#endif

bool IsNetworkFileSystem(std::string_view fileSystemName) {
  for (std::string_view network : {"nfs", "cifs", "smb", "smb2", "9p", "fuse"})
    if (fileSystemName == network) return true;
  return false;
}

}  // namespace tqv::tool
