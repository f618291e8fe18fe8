// Body splitting; see body_splitting.h. The input is read in chunks and each byte is judged by
// the two bytes before it. A read or write failure in mid-split removes both outputs.
#include "outgoing/body_splitting.h"

#include <array>
#include <optional>
#include <string>

#include "platform/file.h"
#include "platform/file_system.h"

namespace tqv {

namespace {

constexpr std::size_t kChunkSize = 65536;

// Routes the bytes of one input to the two outputs.
class BodySplitter {
 public:
  BodySplitter(platform::File &setup, platform::File &messageText)
      : setup_(setup), messageText_(messageText) {}

  void Take(char byte) {
    // Two NULs, as at the very start, count as a line end too.
    const bool lineStart = (beforeLast_ == '\r' && last_ == '\n') || (beforeLast_ == '\0' && last_ == '\0');
    beforeLast_ = last_;
    last_ = byte;
    if (lineStart && line_.size() >= 2) FlushLineTo(setupBytes_);

    if (line_.empty()) {
      if (byte == ':' && lineStart)
        line_ += byte;
      else
        messageTextBytes_ += byte;
    } else if (line_.size() == 1) {
      line_ += byte;
      if (byte != ':') FlushLineTo(messageTextBytes_);
    } else {
      line_ += byte;
      // Too long for an option line: what follows is text, as it no longer starts a line.
      if (line_.size() == kOptionLineBuffer) FlushLineTo(messageTextBytes_);
    }
  }

  // The last option line needs no line end; a lone ':' at the end is dropped.
  void Finish() {
    if (line_.size() >= 2) FlushLineTo(setupBytes_);
    line_.clear();
  }

  bool Write() {
    const bool written = setup_.Write(setupBytes_) && messageText_.Write(messageTextBytes_);
    setupBytes_.clear();
    messageTextBytes_.clear();
    return written;
  }

 private:
  void FlushLineTo(std::string &bytes) {
    bytes += line_;
    line_.clear();
  }

  platform::File &setup_;
  platform::File &messageText_;
  std::string setupBytes_;
  std::string messageTextBytes_;
  std::string line_;
  char beforeLast_ = '\0';
  char last_ = '\0';
};

}  // namespace

int SplitBody(std::string_view inputPath, std::string_view setupPath, std::string_view messageTextPath) {
  std::optional<platform::File> input = platform::File::OpenExclusive(inputPath);
  std::optional<platform::File> setup;
  std::optional<platform::File> messageText;
  if (input) setup = platform::File::CreateExclusive(setupPath);
  if (setup) messageText = platform::File::CreateExclusive(messageTextPath);
  if (!messageText) {
    // A message that cannot be split would fail the same way on every pass: it goes.
    const bool inputOpened = input.has_value();
    const bool setupOpened = setup.has_value();
    input.reset();
    setup.reset();
    if (inputOpened) platform::RemoveFile(inputPath);
    if (setupOpened) platform::RemoveFile(setupPath);
    return -1;
  }

  BodySplitter splitter(*setup, *messageText);
  std::array<char, kChunkSize> chunk;
  bool complete = true;
  while (complete) {
    const std::optional<std::size_t> got = input->Read(chunk.data(), chunk.size());
    complete = got.has_value();
    if (!got || *got == 0) break;
    for (std::size_t i = 0; i < *got; ++i)
      splitter.Take(chunk[i]);
    complete = splitter.Write();
  }
  splitter.Finish();
  complete = splitter.Write() && complete;
  input.reset();
  setup.reset();
  messageText.reset();
  if (!complete) {
    // Half a text would be faxed as if it were all; the input stays for the caller to judge.
    platform::RemoveFile(setupPath);
    platform::RemoveFile(messageTextPath);
    return -1;
  }

  if (IsBlankFile(setupPath)) platform::RemoveFile(setupPath);
  if (IsBlankFile(messageTextPath)) platform::RemoveFile(messageTextPath);
  return 0;
}

bool IsBlankFile(std::string_view path) {
  std::optional<platform::File> file = platform::File::OpenShared(path);
  if (!file) return false;
  std::array<char, kChunkSize> chunk;
  while (true) {
    const std::optional<std::size_t> got = file->Read(chunk.data(), chunk.size());
    if (!got) return false;
    if (*got == 0) return true;
    for (std::size_t i = 0; i < *got; ++i) {
      const char c = chunk[i];
      if (c != '\r' && c != '\n' && c != ' ' && c != '\t') return false;
    }
  }
}

}  // namespace tqv
