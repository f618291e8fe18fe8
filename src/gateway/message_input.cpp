// Buffered reading of a message file. Read errors end the input; nothing is logged here.
#include "gateway/message_input.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/file_system.h"

namespace tqv {

void MessageInput::Attach(platform::File file) {
  file_.emplace(std::move(file));
  if (!buffer_) buffer_ = std::make_unique<char[]>(kBufferSize);
  begin_ = end_ = 0;
  bufferStart_ = 0;
  readFailed_ = false;
}

void MessageInput::Close() {
  file_.reset();
  begin_ = end_ = 0;
  bufferStart_ = 0;
}

bool MessageInput::Refill() {
  if (!file_) return false;
  bufferStart_ += end_;
  begin_ = end_ = 0;
  const std::optional<std::size_t> got = file_->Read(buffer_.get(), kBufferSize);
  if (!got) readFailed_ = true;
  if (!got || *got == 0) return false;
  end_ = *got;
  return true;
}

std::size_t MessageInput::Read(char *destination, std::size_t size) {
  std::size_t done = 0;
  while (done < size) {
    if (begin_ == end_) {
      // Large pieces go straight from the file to the caller, without passing the buffer.
      if (file_ && size - done >= kBufferSize) {
        bufferStart_ += end_;
        begin_ = end_ = 0;
        const std::optional<std::size_t> got = file_->Read(destination + done, size - done);
        if (!got) readFailed_ = true;
        if (!got || *got == 0) break;
        bufferStart_ += *got;
        done += *got;
        continue;
      }
      if (!Refill()) break;
    }
    const std::size_t piece = std::min(size - done, end_ - begin_);
    std::memcpy(destination + done, buffer_.get() + begin_, piece);
    begin_ += piece;
    done += piece;
  }
  return done;
}

std::optional<std::uint64_t> MessageInput::CopyTo(platform::File &target, std::uint64_t length) {
  const auto buffered = static_cast<std::size_t>(std::min<std::uint64_t>(length, end_ - begin_));
  if (buffered > 0 && !target.Write(buffer_.get() + begin_, buffered)) return std::nullopt;
  begin_ += buffered;
  if (buffered == length || !file_) return buffered;
  // The buffer is used up, so the file's own position is the input's.
  bufferStart_ += end_;
  begin_ = end_ = 0;
  const std::optional<std::uint64_t> copied = platform::CopyBytes(*file_, target, length - buffered);
  if (!copied) {
    readFailed_ = true;
    return std::nullopt;
  }
  bufferStart_ += *copied;
  return buffered + *copied;
}

std::uint64_t MessageInput::Skip(std::uint64_t count) {
  std::uint64_t done = 0;
  while (done < count) {
    if (begin_ == end_ && !Refill()) break;
    const std::size_t piece = static_cast<std::size_t>(std::min<std::uint64_t>(count - done, end_ - begin_));
    begin_ += piece;
    done += piece;
  }
  return done;
}

bool MessageInput::SeekTo(std::uint64_t position) {
  if (!file_) return false;
  if (position >= bufferStart_ && position <= bufferStart_ + end_) {
    begin_ = static_cast<std::size_t>(position - bufferStart_);
    return true;
  }
  if (!file_->Seek(static_cast<std::int64_t>(position), platform::SeekOrigin::Begin)) return false;
  bufferStart_ = position;
  begin_ = end_ = 0;
  return true;
}

}  // namespace tqv
