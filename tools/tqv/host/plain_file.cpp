// Opening a plain file without following a link or blocking on a special file: O_NOFOLLOW and
// O_NONBLOCK then fstat on POSIX, FILE_FLAG_OPEN_REPARSE_POINT then the handle's own type on Windows.
// A file that changes into something else between look and open is caught, as the check is on the handle.
#include "tqv/host/plain_file.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#endif

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace tqv::tool {

namespace {

constexpr std::intptr_t kNoHandle = -1;

#if defined(_WIN32)
HANDLE Native(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}
#endif

}  // namespace

std::optional<PlainFile> PlainFile::Open(const std::string &nativePath, PlainFileOpen how, std::string &error,
                                         bool *held) {
  if (held != nullptr) *held = false;
  if (nativePath.empty() || nativePath.find('\0') != std::string::npos) {
    error = "is no file name";
    return std::nullopt;
  }
#if defined(_WIN32)
  const DWORD share = how.exclusive ? 0 : FILE_SHARE_READ | FILE_SHARE_WRITE;
  const DWORD flags = FILE_ATTRIBUTE_NORMAL | (how.followLinks ? 0 : FILE_FLAG_OPEN_REPARSE_POINT);
  HANDLE handle =
      ::CreateFileA(nativePath.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, flags, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    const DWORD failure = ::GetLastError();
    if (failure == ERROR_SHARING_VIOLATION && held != nullptr) *held = true;
    error = failure == ERROR_FILE_NOT_FOUND || failure == ERROR_PATH_NOT_FOUND ? "does not exist"
            : failure == ERROR_SHARING_VIOLATION                               ? "is still held by its writer"
                                                                               : "cannot be opened";
    return std::nullopt;
  }
  PlainFile file(reinterpret_cast<std::intptr_t>(handle));
  BY_HANDLE_FILE_INFORMATION info{};
  if (::GetFileType(handle) != FILE_TYPE_DISK || !::GetFileInformationByHandle(handle, &info) ||
      (info.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) != 0) {
    error = (info.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 ? "is a link" : "is not a plain file";
    return std::nullopt;
  }
  return file;
#else
  const int flags = O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK | (how.followLinks ? 0 : O_NOFOLLOW);
  int fd;
  do {
    fd = ::open(nativePath.c_str(), flags);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) {
    error = errno == ENOENT ? "does not exist" : errno == ELOOP ? "is a link" : std::strerror(errno);
    return std::nullopt;
  }
  PlainFile file(fd);
  struct stat info {};
  if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
    error = "is not a plain file";
    return std::nullopt;
  }
  if (how.exclusive && ::flock(fd, LOCK_EX | LOCK_NB) != 0) {
    if (held != nullptr) *held = errno == EWOULDBLOCK;
    error = "is still held by its writer";
    return std::nullopt;
  }
  return file;
#endif
}

PlainFile::PlainFile(PlainFile &&other) noexcept : handle_(std::exchange(other.handle_, kNoHandle)) {}

PlainFile &PlainFile::operator=(PlainFile &&other) noexcept {
  if (this != &other) {
    Close();
    handle_ = std::exchange(other.handle_, kNoHandle);
  }
  return *this;
}

PlainFile::~PlainFile() {
  Close();
}

void PlainFile::Close() noexcept {
  if (handle_ == kNoHandle) return;
#if defined(_WIN32)
  ::CloseHandle(Native(handle_));
#else
  ::close(static_cast<int>(handle_));
#endif
  handle_ = kNoHandle;
}

std::optional<std::size_t> PlainFile::Read(void *buffer, std::size_t size) {
#if defined(_WIN32)
  const DWORD want = static_cast<DWORD>(std::min<std::size_t>(size, std::numeric_limits<DWORD>::max()));
  DWORD got = 0;
  if (!::ReadFile(Native(handle_), buffer, want, &got, nullptr)) return std::nullopt;
  return static_cast<std::size_t>(got);
#else
  ssize_t got;
  do {
    got = ::read(static_cast<int>(handle_), buffer, size);
  } while (got < 0 && errno == EINTR);
  if (got < 0) return std::nullopt;
  return static_cast<std::size_t>(got);
#endif
}

std::optional<std::string> PlainFile::ReadAll(std::size_t limit) {
  std::string bytes;
  std::array<char, 64 * 1024> piece{};
  while (true) {
    const std::optional<std::size_t> got = Read(piece.data(), piece.size());
    if (!got) return std::nullopt;
    if (*got == 0) return bytes;
    if (bytes.size() + *got > limit) return std::nullopt;
    bytes.append(piece.data(), *got);
  }
}

}  // namespace tqv::tool
