// An open file of the operating system, closed when the object goes. Opens follow the Windows
// sharing rules on every platform, so a file that another process is still writing stays unreadable.
// Only plain files open: a final link, a FIFO or a device is refused without blocking. Every
// failure is a result (nullopt or false); nothing throws and nothing is logged here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tqv::platform {

enum class FileAccess { Read, Write, ReadWrite };

// None: no other handle may have the file open while this one is open, and this open fails
// while any other handle has it. ReadWrite: others may read and write, unless one of them holds
// the file without sharing.
enum class FileSharing { None, ReadWrite };

enum class FileCreation {
  OpenExisting,  // fails when the file is missing
  CreateNew,     // fails when the file exists
  CreateAlways,  // creates, or empties an existing file
  OpenAlways,    // opens, or creates a missing file
};

enum class SeekOrigin { Begin, Current, End };

// Whether a symbolic link (a reparse point on Windows) as the last component is gone through.
// Anyone who may write a shared directory can plant one there, so only files that an
// administrator alone places, the settings files, are opened through one.
enum class FinalLink { Refuse, Follow };

class File {
 public:
  static std::optional<File> Open(std::string_view path, FileAccess access, FileSharing sharing,
                                  FileCreation creation, FinalLink finalLink = FinalLink::Refuse);

  // The opens the system uses most, by what they are for.
  static std::optional<File> OpenExclusive(std::string_view path) {
    return Open(path, FileAccess::Read, FileSharing::None, FileCreation::OpenExisting);
  }
  static std::optional<File> OpenShared(std::string_view path) {
    return Open(path, FileAccess::Read, FileSharing::ReadWrite, FileCreation::OpenExisting);
  }
  static std::optional<File> CreateExclusive(std::string_view path) {
    return Open(path, FileAccess::Write, FileSharing::None, FileCreation::CreateAlways);
  }
  // As CreateExclusive, for a name just chosen to be free: made as new first, which spares the
  // look for an existing file in the usual case; a plain file found there is emptied as before.
  static std::optional<File> CreateExclusiveFresh(std::string_view path);
  // As the C runtime opens for appending: shared, created when missing, positioned at the end.
  static std::optional<File> OpenForAppend(std::string_view path);

  File(File &&other) noexcept;
  File &operator=(File &&other) noexcept;
  File(const File &) = delete;
  File &operator=(const File &) = delete;
  ~File();

  // Bytes read, 0 at the end of the file, nullopt on a read error.
  std::optional<std::size_t> Read(void *buffer, std::size_t size);
  // Reads up to `limit` bytes from the current position; nullopt on a read error.
  std::optional<std::string> ReadAll(std::size_t limit = SIZE_MAX);
  // Writes every byte or reports failure.
  bool Write(const void *data, std::size_t size);
  bool Write(std::string_view text) { return Write(text.data(), text.size()); }
  // The new position, or nullopt.
  std::optional<std::uint64_t> Seek(std::int64_t offset, SeekOrigin origin);
  std::optional<std::uint64_t> Size() const;
  // Cuts or extends the file to its current position.
  bool Truncate();

  // The operating system's handle, for the backend's own bulk operations.
  std::intptr_t NativeHandle() const { return handle_; }

  // Whether this open made the file, so a caller can put a header into a new file without a look
  // before the open that another process could overtake.
  bool Created() const { return created_; }

 private:
  // -1: no descriptor on POSIX, INVALID_HANDLE_VALUE on Windows.
  static constexpr std::intptr_t kNoHandle = -1;

  explicit File(std::intptr_t handle) : handle_(handle) {}
  // The backend's own: closing the handle releases what the open took.
  void Close() noexcept;

  std::intptr_t handle_;
  bool created_ = false;
};

}  // namespace tqv::platform
