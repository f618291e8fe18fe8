// MessageReader on arbitrary bytes, as a mail gateway might leave them. Beyond crashes and
// sanitizer findings it aborts when an extraction writes anywhere but its target, when a failed
// extraction leaves a file at its target, or when a getter hands out more than its field holds.
#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <set>
#include <span>
#include <string>

#include "common/text_limits.h"
#include "fuzz_support.h"
#include "gateway/message_reader.h"

namespace {

namespace fs = std::filesystem;

constexpr const char *kMessageName = "SGW0.TMP";
constexpr const char *kBodyName = "BODY.TXT";
constexpr const char *kAttachmentName = "ATTACH.BIN";

using tqv::fuzz::Fail;
using tqv::fuzz::Sandbox;

// Only the message and the two targets may ever be in the sandbox.
void CheckNothingElseWritten() {
  static const std::set<std::string> allowed = {kMessageName, kBodyName, kAttachmentName};
  for (const fs::directory_entry &entry : fs::directory_iterator(Sandbox()))
    if (!allowed.contains(entry.path().filename().string())) Fail("a file was written beside the targets");
}

void CheckGetters(const tqv::MessageReader &reader) {
  std::array<char, 300> buffer;
  for (const std::size_t size :
       {std::size_t{0}, std::size_t{1}, std::size_t{9}, std::size_t{256}, buffer.size()}) {
    const std::span<char> span(buffer.data(), size);
    for (void (tqv::MessageReader::*get)(std::span<char>) const :
         {&tqv::MessageReader::GetSender, &tqv::MessageReader::GetSubject,
          &tqv::MessageReader::GetAttachmentName, &tqv::MessageReader::GetStatusInfo}) {
      buffer.fill('\x7f');
      (reader.*get)(span);
      if (size > 0 && ::strnlen(buffer.data(), size) >= size) Fail("a text getter left no NUL");
      if (::strnlen(buffer.data(), size) > tqv::kMaxName) Fail("a value longer than 254 characters");
    }
    buffer.fill('\x7f');
    reader.GetRecipient(span, span);
    buffer.fill('\x7f');
    reader.GetCustomString(span);
    if (size > tqv::kHeaderFieldSize && buffer[tqv::kHeaderFieldSize] != '\x7f') Fail("a field copy overran");
    reader.GetFileTypeField(span);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const fs::path message = Sandbox() / kMessageName;
  const fs::path body = Sandbox() / kBodyName;
  const fs::path attachment = Sandbox() / kAttachmentName;
  tqv::fuzz::WriteBytes(message, std::string_view(reinterpret_cast<const char *>(data), size));

  {
    tqv::MessageReader reader;
    if (!reader.Open(message.string())) Fail("cannot open the message");
    for (tqv::ReadCode code; (code = reader.ReadNext()) != tqv::ReadCode::End;) {
      const fs::path *target = nullptr;
      bool extracted = false;
      if (code == tqv::ReadCode::Body) {
        target = &body;
        extracted = reader.ExtractBody(body.string());
      } else if (code == tqv::ReadCode::Attachment) {
        target = &attachment;
        extracted = reader.ExtractAttachment(attachment.string());
      } else {
        continue;
      }
      if (!extracted && fs::exists(*target)) Fail("a failed extraction left its target");
      if (extracted && code == tqv::ReadCode::Attachment &&
          fs::file_size(*target) != reader.AttachmentLength())
        Fail("an extracted attachment differs from its length");
      CheckNothingElseWritten();
      fs::remove(*target);
    }
    CheckGetters(reader);
  }
  fs::remove(message);
  return 0;
}
