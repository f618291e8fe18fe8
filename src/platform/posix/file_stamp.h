// What tells that a file or directory on disk is no longer the one last looked at, for the caches
// of the POSIX backend. The change time catches a rewrite in place that puts the modification time
// back (cp -p, touch -d); the inode, a file renamed over.
#pragma once

#include <sys/stat.h>

namespace tqv::platform {

struct FileStamp {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  time_t modifiedSeconds = 0;
  long modifiedNanoseconds = 0;
  time_t changedSeconds = 0;
  long changedNanoseconds = 0;

  bool operator==(const FileStamp &) const = default;
};

inline FileStamp StampFrom(const struct stat &info) {
  return FileStamp{info.st_dev,          info.st_ino,         info.st_size,        info.st_mtim.tv_sec,
                   info.st_mtim.tv_nsec, info.st_ctim.tv_sec, info.st_ctim.tv_nsec};
}

}  // namespace tqv::platform
