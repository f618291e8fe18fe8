// Buffered reading of an open message file, with a position of its own: the reader goes through
// large files in big reads yet can step back to the start of a block. A failed read counts as the
// end of the file, as the message format treats both alike.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "platform/file.h"

namespace tqv {

class MessageInput {
 public:
  MessageInput() = default;

  bool IsOpen() const { return file_.has_value(); }
  // True once a read failed, as opposed to the file ending: what was read is not the whole file.
  bool ReadFailed() const { return readFailed_; }
  void Attach(platform::File file);
  void Close();

  // The next byte (0 to 255), or -1 at the end of the file or after a failed read.
  int Get() {
    if (begin_ == end_ && !Refill()) return -1;
    return static_cast<unsigned char>(buffer_[begin_++]);
  }

  // Copies up to `size` bytes; fewer only at the end of the file or after a failed read.
  std::size_t Read(char *destination, std::size_t size);
  // Copies up to `length` bytes to `target`: what the buffer holds, then straight from file to
  // file. Fewer only at the end of the file; nullopt when a read or a write failed, after which
  // the input counts as failed.
  std::optional<std::uint64_t> CopyTo(platform::File &target, std::uint64_t length);
  // Steps over up to `count` bytes; how many there were.
  std::uint64_t Skip(std::uint64_t count);

  // The offset in the file of the byte Get would return next.
  std::uint64_t Position() const { return bufferStart_ + begin_; }
  bool SeekTo(std::uint64_t position);

 private:
  static constexpr std::size_t kBufferSize = 64 * 1024;

  bool Refill();

  std::optional<platform::File> file_;
  std::unique_ptr<char[]> buffer_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::uint64_t bufferStart_ = 0;  // file offset of buffer_[0]
  bool readFailed_ = false;
};

}  // namespace tqv
