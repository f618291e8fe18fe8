// The half of File that is the same on every backend: ownership of the handle and appending.
#include "platform/file.h"

namespace tqv::platform {

std::optional<File> File::OpenForAppend(std::string_view path) {
  std::optional<File> file = Open(path, FileAccess::Write, FileSharing::ReadWrite, FileCreation::OpenAlways);
  if (file && !file->Seek(0, SeekOrigin::End)) return std::nullopt;
  return file;
}

File::File(File &&other) noexcept : handle_(other.handle_) {
  other.handle_ = kNoHandle;
}

File &File::operator=(File &&other) noexcept {
  if (this != &other) {
    Close();
    handle_ = other.handle_;
    other.handle_ = kNoHandle;
  }
  return *this;
}

File::~File() {
  Close();
}

}  // namespace tqv::platform
