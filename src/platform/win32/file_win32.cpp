// File handles of the Win32 backend: CreateFileA with the share mode the caller asks for (0 for
// no sharing), so Windows itself refuses an open that would meet another handle's sharing. Only a
// handle to a plain disk file is kept: a reparse point, a device name or a pipe is closed again.
#include <windows.h>

#include <algorithm>
#include <limits>

#include "platform/fault_injection.h"
#include "platform/file.h"

namespace tqv::platform {

namespace {

HANDLE Native(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

DWORD DesiredAccess(FileAccess access) {
  switch (access) {
    case FileAccess::Read:
      return GENERIC_READ;
    case FileAccess::Write:
      return GENERIC_WRITE;
    case FileAccess::ReadWrite:
      break;
  }
  return GENERIC_READ | GENERIC_WRITE;
}

DWORD Disposition(FileCreation creation) {
  switch (creation) {
    case FileCreation::OpenExisting:
      return OPEN_EXISTING;
    case FileCreation::CreateNew:
      return CREATE_NEW;
    case FileCreation::CreateAlways:
      return CREATE_ALWAYS;
    case FileCreation::OpenAlways:
      break;
  }
  return OPEN_ALWAYS;
}

// The attributes that rule a name out before it is opened: a directory, and a reparse point
// (symbolic link or junction) unless the caller follows links.
DWORD RefusedAttributes(FinalLink finalLink) {
  return FILE_ATTRIBUTE_DIRECTORY | (finalLink == FinalLink::Refuse ? FILE_ATTRIBUTE_REPARSE_POINT : 0);
}

// A handle to what the caller may use: a file on a disk (not CON, NUL, COM1 or a pipe), not a
// directory, and not a reparse point itself.
bool UsableHandle(HANDLE handle, FinalLink finalLink) {
  if (::GetFileType(handle) != FILE_TYPE_DISK) return false;
  BY_HANDLE_FILE_INFORMATION info{};
  return ::GetFileInformationByHandle(handle, &info) &&
         (info.dwFileAttributes & RefusedAttributes(finalLink)) == 0;
}

}  // namespace

std::optional<File> File::Open(std::string_view path, FileAccess access, FileSharing sharing,
                               FileCreation creation, FinalLink finalLink) {
  if (FileOperationMustFail()) return std::nullopt;
  const std::string name(path);
  if (name.empty() || name.find('\0') != std::string::npos) return std::nullopt;
  // Checked before the open as well: CREATE_ALWAYS would empty what it opened before the handle
  // could be looked at.
  const DWORD existing = ::GetFileAttributesA(name.c_str());
  if (existing != INVALID_FILE_ATTRIBUTES && (existing & RefusedAttributes(finalLink)) != 0)
    return std::nullopt;
  const DWORD share = sharing == FileSharing::None ? 0 : FILE_SHARE_READ | FILE_SHARE_WRITE;
  // With the flag, a link that appears after the check is opened as itself, never what it names.
  const DWORD flags =
      FILE_ATTRIBUTE_NORMAL | (finalLink == FinalLink::Refuse ? FILE_FLAG_OPEN_REPARSE_POINT : 0);
  HANDLE handle = ::CreateFileA(name.c_str(), DesiredAccess(access), share, nullptr, Disposition(creation),
                                flags, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return std::nullopt;
  // OPEN_ALWAYS and CREATE_ALWAYS tell an existing file by ERROR_ALREADY_EXISTS on success.
  const bool existed = creation == FileCreation::OpenExisting ||
                       (creation != FileCreation::CreateNew && ::GetLastError() == ERROR_ALREADY_EXISTS);
  File file(reinterpret_cast<std::intptr_t>(handle));
  file.created_ = !existed;
  if (!UsableHandle(handle, finalLink)) return std::nullopt;
  return file;
}

void File::Close() noexcept {
  if (handle_ != kNoHandle) {
    ::CloseHandle(Native(handle_));
    handle_ = kNoHandle;
  }
}

std::optional<std::size_t> File::Read(void *buffer, std::size_t size) {
  if (FileOperationMustFail()) return std::nullopt;
  const DWORD want = static_cast<DWORD>(std::min<std::size_t>(size, std::numeric_limits<DWORD>::max()));
  DWORD got = 0;
  if (!::ReadFile(Native(handle_), buffer, want, &got, nullptr)) return std::nullopt;
  return static_cast<std::size_t>(got);
}

bool File::Write(const void *data, std::size_t size) {
  if (FileOperationMustFail()) return false;
  const char *bytes = static_cast<const char *>(data);
  while (size > 0) {
    const DWORD want = static_cast<DWORD>(std::min<std::size_t>(size, std::numeric_limits<DWORD>::max()));
    DWORD written = 0;
    if (!::WriteFile(Native(handle_), bytes, want, &written, nullptr) || written == 0) return false;
    bytes += written;
    size -= written;
  }
  return true;
}

std::optional<std::uint64_t> File::Seek(std::int64_t offset, SeekOrigin origin) {
  const DWORD method = origin == SeekOrigin::Begin     ? FILE_BEGIN
                       : origin == SeekOrigin::Current ? FILE_CURRENT
                                                       : FILE_END;
  LONG high = static_cast<LONG>(offset >> 32);
  // INVALID_SET_FILE_POINTER is also a valid low half, so the error code decides.
  ::SetLastError(NO_ERROR);
  const DWORD low = ::SetFilePointer(Native(handle_), static_cast<LONG>(offset & 0xFFFFFFFF), &high, method);
  if (low == INVALID_SET_FILE_POINTER && ::GetLastError() != NO_ERROR) return std::nullopt;
  return (static_cast<std::uint64_t>(static_cast<DWORD>(high)) << 32) | low;
}

std::optional<std::uint64_t> File::Size() const {
  DWORD high = 0;
  ::SetLastError(NO_ERROR);
  const DWORD low = ::GetFileSize(Native(handle_), &high);
  if (low == INVALID_FILE_SIZE && ::GetLastError() != NO_ERROR) return std::nullopt;
  return (static_cast<std::uint64_t>(high) << 32) | low;
}

bool File::Truncate() {
  if (FileOperationMustFail()) return false;
  return ::SetEndOfFile(Native(handle_)) != 0;
}

}  // namespace tqv::platform
