// The half of File that is the same on every backend: ownership of the handle, appending, making
// a file under a name just chosen, and reading whole.
#include "platform/file.h"

#include <algorithm>

#include "platform/file_system.h"

namespace tqv::platform {

std::optional<File> File::OpenForAppend(std::string_view path) {
  std::optional<File> file = Open(path, FileAccess::Write, FileSharing::ReadWrite, FileCreation::OpenAlways);
  if (file && !file->Seek(0, SeekOrigin::End)) return std::nullopt;
  return file;
}

std::optional<File> File::CreateExclusiveFresh(std::string_view path) {
  std::optional<File> file = Open(path, FileAccess::Write, FileSharing::None, FileCreation::CreateNew);
  if (file) return file;
  // Anything but a plain file under the name fails CreateExclusive as well; a failed creation of
  // a name nothing has (an injected fault, a missing directory) is not tried twice.
  const std::optional<EntryInfo> there = GetEntryInfo(path);
  if (!there || !there->isRegularFile) return std::nullopt;
  return CreateExclusive(path);
}

std::optional<std::string> File::ReadAll(std::size_t limit) {
  std::string result;
  char chunk[65536];
  while (result.size() < limit) {
    const std::size_t want = std::min(sizeof chunk, limit - result.size());
    std::optional<std::size_t> got = Read(chunk, want);
    if (!got) return std::nullopt;
    if (*got == 0) break;
    result.append(chunk, *got);
  }
  return result;
}

File::File(File &&other) noexcept : handle_(other.handle_), created_(other.created_) {
  other.handle_ = kNoHandle;
}

File &File::operator=(File &&other) noexcept {
  if (this != &other) {
    Close();
    handle_ = other.handle_;
    created_ = other.created_;
    other.handle_ = kNoHandle;
  }
  return *this;
}

File::~File() {
  Close();
}

}  // namespace tqv::platform
