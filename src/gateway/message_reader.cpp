// MessageReader: the line rule of the gateway format, the keyword dispatch and the block copies.
// A failed extraction removes its target, so no later step finds half a document under that name.
#include "gateway/message_reader.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>

#include "common/number_text.h"
#include "common/text_limits.h"
#include "platform/file.h"
#include "platform/file_system.h"

namespace tqv {

namespace {

// Without a CR LF, a line ends after this many bytes and the rest is read as further lines.
constexpr std::size_t kMaxLineBytes = kMaxHeaderLineChars + 2;
// Block data is followed by one CR LF before its end line.
constexpr std::uint64_t kBlockDataEnd = 2;

constexpr std::string_view kNameOpen = "[[[";
constexpr std::string_view kNameClose = "]]]";

bool IsBlank(int byte) {
  return byte == '\r' || byte == '\n' || byte == ' ' || byte == '\t';
}

// "[[[" name "]]]" address: only the address is kept.
std::string_view RecipientAddress(std::string_view value) {
  const std::size_t close = value.find(kNameClose);
  if (close == std::string_view::npos || value.find(kNameOpen) == std::string_view::npos) return value;
  return value.substr(close + kNameClose.size());
}

void CopyText(std::string_view field, std::span<char> buffer) {
  if (buffer.empty()) return;
  const std::size_t count = std::min(field.size(), CharsInBuffer(buffer.size()));
  std::memcpy(buffer.data(), field.data(), count);
  buffer[count] = '\0';
}

void CopyWholeField(std::string_view field, std::span<char> buffer) {
  const std::size_t size = std::min(buffer.size(), kHeaderFieldSize);
  std::fill_n(buffer.data(), size, '\0');
  std::memcpy(buffer.data(), field.data(), std::min(field.size(), size));
}

}  // namespace

bool MessageReader::Open(std::string_view path) {
  if (input_.IsOpen()) return false;
  std::optional<platform::File> file = platform::File::OpenExclusive(path);
  if (!file) return false;
  input_.Attach(std::move(*file));
  writeFailed_ = false;
  return true;
}

void MessageReader::Close() {
  input_.Close();
}

bool MessageReader::ReadLine(std::string &line) {
  line.clear();
  while (line.size() < kMaxLineBytes) {
    const int byte = input_.Get();
    if (byte < 0) return false;  // an unterminated last line is dropped
    if (byte == '\n' && !line.empty() && line.back() == '\r') {
      line.pop_back();
      return true;
    }
    line.push_back(static_cast<char>(byte));
  }
  return true;
}

ReadCode MessageReader::ReadNext() {
  while (ReadLine(line_)) {
    // Header values are C strings on both sides of the gateway: a NUL ends the line.
    std::string_view line(line_);
    line = line.substr(0, line.find('\0'));
    const auto match = std::find_if(kHeaderKeywords.begin(), kHeaderKeywords.end(), [&](const auto &entry) {
      return entry.readCode && line.starts_with(entry.text);
    });
    if (match == kHeaderKeywords.end()) continue;
    const std::string_view value = line.substr(match->text.size(), kMaxName);

    switch (match->keyword) {
      case HeaderKeyword::MailFrom:
        sender_ = value;
        break;
      case HeaderKeyword::RcptTo:
        recipient_ = RecipientAddress(value);
        break;
      case HeaderKeyword::Subject:
        subject_ = value;
        break;
      case HeaderKeyword::BeginBody:
        bodyLength_ = static_cast<std::uint32_t>(ParseLong(value));
        break;
      case HeaderKeyword::BeginAttach: {
        const std::size_t colon = value.find(':');
        if (colon == std::string_view::npos) return ReadCode::Malformed;
        attachmentName_ = value.substr(0, std::min(colon, kMaxAttachmentName));
        attachmentLength_ = static_cast<std::uint32_t>(ParseLong(value.substr(colon + 1)));
        if (attachmentLength_ == 0) return ReadCode::Malformed;
        break;
      }
      case HeaderKeyword::CustomString:
        customString_ = value;
        break;
      case HeaderKeyword::FaxStatus:
        faxStatus_ = ParseLong(value);
        break;
      case HeaderKeyword::FaxStatusInfo:
        faxStatusInfo_ = value;
        break;
      case HeaderKeyword::FaxNumRetries:
        numRetries_ = ParseLong(value);
        break;
      case HeaderKeyword::FaxCallDuration:
        callDuration_ = ParseLong(value);
        break;
      case HeaderKeyword::FaxPagesTransferred:
        pagesTransferred_ = ParseLong(value);
        break;
      case HeaderKeyword::FaxDeliveryTime:
        deliveryTime_ = ParseLong(value);
        break;
      case HeaderKeyword::FileType:
        fileType_ = value;
        break;
      default:  // "MAPIMAIL.DAT:" carries no value
        break;
    }
    return *match->readCode;
  }
  return ReadCode::End;
}

bool MessageReader::CopyBlock(std::uint64_t length, std::string_view targetPath) {
  std::optional<platform::File> target = platform::File::CreateExclusiveFresh(targetPath);
  if (!target) {
    writeFailed_ = true;
    return false;
  }
  const std::optional<std::uint64_t> copied = input_.CopyTo(*target, length);
  // A failed read or write is the machine's fault; data running short is the message's.
  if (!copied) writeFailed_ = true;
  if (copied != length) {
    target.reset();  // our own lock would keep the file from being removed
    platform::RemoveFile(targetPath);
    return false;
  }
  input_.Skip(kBlockDataEnd);
  return true;
}

bool MessageReader::EndLineFollows(HeaderKeyword endKeyword) {
  return ReadLine(line_) && std::string_view(line_).starts_with(KeywordText(endKeyword));
}

bool MessageReader::ExtractBody(std::string_view targetPath) {
  if (!input_.IsOpen()) return false;
  const std::uint64_t length = bodyLength_;

  // An empty or all-blank body is stepped over: a message without text makes no text document.
  bool blank = true;
  const std::uint64_t start = input_.Position();
  for (std::uint64_t i = 0; i < length && blank; ++i) {
    const int byte = input_.Get();
    blank = byte >= 0 && IsBlank(byte);
  }
  if (blank) {
    input_.Skip(kBlockDataEnd);
  } else if (!input_.SeekTo(start) || !CopyBlock(length, targetPath)) {
    return false;
  }

  if (EndLineFollows(HeaderKeyword::EndBody)) return true;
  platform::RemoveFile(targetPath);
  return false;
}

bool MessageReader::ExtractAttachment(std::string_view targetPath) {
  if (!input_.IsOpen() || !CopyBlock(attachmentLength_, targetPath)) return false;
  if (EndLineFollows(HeaderKeyword::EndAttach)) return true;
  platform::RemoveFile(targetPath);
  return false;
}

void MessageReader::GetSender(std::span<char> buffer) const {
  CopyText(sender_, buffer);
}

void MessageReader::GetSubject(std::span<char> buffer) const {
  CopyText(subject_, buffer);
}

void MessageReader::GetAttachmentName(std::span<char> buffer) const {
  CopyText(attachmentName_, buffer);
}

void MessageReader::GetStatusInfo(std::span<char> buffer) const {
  CopyText(faxStatusInfo_, buffer);
}

void MessageReader::GetRecipient(std::span<char> name, std::span<char> address) const {
  CopyText(recipient_, name);
  CopyText(recipient_, address);
}

void MessageReader::GetCustomString(std::span<char> buffer) const {
  CopyWholeField(customString_, buffer);
}

void MessageReader::GetFileTypeField(std::span<char> buffer) const {
  CopyWholeField(fileType_, buffer);
}

}  // namespace tqv
