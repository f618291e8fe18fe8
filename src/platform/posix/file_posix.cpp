// File handles of the POSIX backend. Windows sharing is kept with flock: an open without sharing
// takes LOCK_EX, a shared open LOCK_SH, both non-blocking, so each fails where Windows would.
// Opens never block and never go through a final link: a FIFO, device or link fails at once.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/fault_injection.h"
#include "platform/file.h"
#include "platform/posix/native_path.h"

namespace tqv::platform {

namespace {

int Descriptor(std::intptr_t handle) {
  return static_cast<int>(handle);
}

// O_NONBLOCK: a FIFO would otherwise hold the open until a writer came; it is refused right after.
int OpenFlags(FileAccess access, FileCreation creation, FinalLink finalLink) {
  int flags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  if (finalLink == FinalLink::Refuse) flags |= O_NOFOLLOW;
  switch (access) {
    case FileAccess::Read:
      flags |= O_RDONLY;
      break;
    case FileAccess::Write:
      flags |= O_WRONLY;
      break;
    case FileAccess::ReadWrite:
      flags |= O_RDWR;
      break;
  }
  switch (creation) {
    case FileCreation::OpenExisting:
      break;
    case FileCreation::CreateNew:
      flags |= O_CREAT | O_EXCL;
      break;
    // Never O_TRUNC: the file may be emptied only once the lock shows nobody else has it open.
    case FileCreation::CreateAlways:
    case FileCreation::OpenAlways:
      flags |= O_CREAT;
      break;
  }
  return flags;
}

int OpenDescriptor(const std::string &nativePath, int flags) {
  int fd;
  do {
    fd = ::open(nativePath.c_str(), flags, 0666);
  } while (fd < 0 && errno == EINTR);
  return fd;
}

// A plain file. Linux ignores O_NONBLOCK for reads and writes of plain files, so it stays set there
// and saves two calls per open; elsewhere the file is made blocking again.
bool UsableFile(int fd) {
  struct stat info {};
  if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) return false;
#if defined(__linux__)
  return true;
#else
  const int flags = ::fcntl(fd, F_GETFL);
  return flags >= 0 && ::fcntl(fd, F_SETFL, flags & ~O_NONBLOCK) == 0;
#endif
}

bool Lock(int fd, int lockMode) {
  int locked;
  do {
    locked = ::flock(fd, lockMode);
  } while (locked != 0 && errno == EINTR);
  return locked == 0;
}

}  // namespace

std::optional<File> File::Open(std::string_view path, FileAccess access, FileSharing sharing,
                               FileCreation creation, FinalLink finalLink) {
  if (FileOperationMustFail()) return std::nullopt;
  const std::string nativePath = ToNativePath(path);
  if (nativePath.empty()) return std::nullopt;
  const int lockMode = (sharing == FileSharing::None ? LOCK_EX : LOCK_SH) | LOCK_NB;

  // A file that exists is opened and locked where it is. One that does not is made under a
  // temporary name, locked there and only then linked in: creating and locking are two steps on
  // POSIX, and a reader that opened the new, empty file between them would take it and make this
  // open fail. A name that appears meanwhile is opened as existing, as Windows would.
  for (int attempt = 0; attempt < 3; ++attempt) {
    if (creation != FileCreation::CreateNew) {
      const int fd = OpenDescriptor(nativePath, OpenFlags(access, FileCreation::OpenExisting, finalLink));
      if (fd >= 0) {
        File file(fd);
        if (!UsableFile(fd) || !Lock(fd, lockMode)) return std::nullopt;
        if (creation == FileCreation::CreateAlways && ::ftruncate(fd, 0) != 0) return std::nullopt;
        return file;
      }
      // ELOOP (a link) and ENXIO (a FIFO without a reader) end here, never in a create.
      if (errno != ENOENT || creation == FileCreation::OpenExisting) return std::nullopt;
    }
    const std::string temporary = TemporaryNameBeside(nativePath, "new");
    const int fd = OpenDescriptor(temporary, OpenFlags(access, FileCreation::CreateNew, FinalLink::Refuse));
    if (fd < 0) return std::nullopt;
    File file(fd);
    const bool locked = Lock(fd, lockMode);
    const bool linked = locked && ::link(temporary.c_str(), nativePath.c_str()) == 0;
    const int linkError = errno;
    ::unlink(temporary.c_str());
    if (linked) {
      file.created_ = true;
      return file;
    }
    // Someone opened the temporary file before it was locked; it is gone now, try another name.
    if (!locked) continue;
    if (linkError == EEXIST) {
      if (creation == FileCreation::CreateNew) return std::nullopt;
      continue;
    }
    // A file system without hard links: create in place, with the short gap this avoids elsewhere.
    // Made only as new, so the handle knows it made the file; one there meanwhile opens next time.
    const int direct = OpenDescriptor(nativePath, OpenFlags(access, FileCreation::CreateNew, finalLink));
    if (direct < 0) {
      if (errno == EEXIST && creation != FileCreation::CreateNew) continue;
      return std::nullopt;
    }
    File inPlace(direct);
    inPlace.created_ = true;
    if (!UsableFile(direct) || !Lock(direct, lockMode)) {
      if (creation == FileCreation::CreateNew) ::unlink(nativePath.c_str());
      return std::nullopt;
    }
    return inPlace;
  }
  return std::nullopt;
}

void File::Close() noexcept {
  if (handle_ != kNoHandle) {
    ::close(Descriptor(handle_));  // closing releases the flock
    handle_ = kNoHandle;
  }
}

std::optional<std::size_t> File::Read(void *buffer, std::size_t size) {
  if (FileOperationMustFail()) return std::nullopt;
  ssize_t got;
  do {
    got = ::read(Descriptor(handle_), buffer, size);
  } while (got < 0 && errno == EINTR);
  if (got < 0) return std::nullopt;
  return static_cast<std::size_t>(got);
}

bool File::Write(const void *data, std::size_t size) {
  if (FileOperationMustFail()) return false;
  const char *bytes = static_cast<const char *>(data);
  while (size > 0) {
    const ssize_t written = ::write(Descriptor(handle_), bytes, size);
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    bytes += written;
    size -= static_cast<std::size_t>(written);
  }
  return true;
}

std::optional<std::uint64_t> File::Seek(std::int64_t offset, SeekOrigin origin) {
  const int whence = origin == SeekOrigin::Begin     ? SEEK_SET
                     : origin == SeekOrigin::Current ? SEEK_CUR
                                                     : SEEK_END;
  const off_t position = ::lseek(Descriptor(handle_), static_cast<off_t>(offset), whence);
  if (position < 0) return std::nullopt;
  return static_cast<std::uint64_t>(position);
}

std::optional<std::uint64_t> File::Size() const {
  struct stat info {};
  if (::fstat(Descriptor(handle_), &info) != 0) return std::nullopt;
  return static_cast<std::uint64_t>(info.st_size);
}

bool File::Truncate() {
  if (FileOperationMustFail()) return false;
  const off_t position = ::lseek(Descriptor(handle_), 0, SEEK_CUR);
  return position >= 0 && ::ftruncate(Descriptor(handle_), position) == 0;
}

}  // namespace tqv::platform
