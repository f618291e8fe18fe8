// MessageReader: reads a gateway message file line by line and copies its body and attachment
// blocks to files of their own. Every failure is a result (false, ReadCode::End or Malformed);
// the caller decides what it means for the message. Nothing is logged here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "gateway/header_keywords.h"
#include "gateway/message_input.h"

namespace tqv {

// The custom string and the file type are handed out as whole fields of this many bytes.
inline constexpr std::size_t kHeaderFieldSize = 256;
// The longest attachment name the reader keeps.
inline constexpr std::size_t kMaxAttachmentName = 260;

class MessageReader {
 public:
  MessageReader() = default;
  MessageReader(const MessageReader &) = delete;
  MessageReader &operator=(const MessageReader &) = delete;

  // Opens an existing file without sharing, so a file that its writer still holds is refused.
  // False also when this reader already has a file open.
  bool Open(std::string_view path);
  void Close();

  // Reads lines until one that the reader acts on, stores its value and says which it was.
  // End at the end of the file (an unterminated last line is never seen) or at "MAPIMAIL.DAT:".
  ReadCode ReadNext();

  // After ReadCode::Body: copies the body to `targetPath`, replacing any file there. An empty or
  // all-blank body writes no file. False when the target cannot be created, or when the data runs
  // short or is not followed by its end line; in the latter cases the target is removed, so a
  // failed extraction never leaves a partial document under the name the caller asked for.
  bool ExtractBody(std::string_view targetPath);
  // After ReadCode::Attachment: the same for the attachment, with no exception for blank data.
  bool ExtractAttachment(std::string_view targetPath);
  // True when the machine, not the message, failed: a read of the message, or the creation or a
  // write of an extracted file. The message may then look shorter than it is.
  bool MachineFault() const { return input_.ReadFailed() || writeFailed_; }

  // Copy at most size-1 characters of the field and a NUL.
  void GetSender(std::span<char> buffer) const;
  void GetSubject(std::span<char> buffer) const;
  void GetAttachmentName(std::span<char> buffer) const;
  void GetStatusInfo(std::span<char> buffer) const;
  // Both buffers receive the recipient's address: the format carries no separate name.
  void GetRecipient(std::span<char> name, std::span<char> address) const;
  // Copy exactly size bytes (at most kHeaderFieldSize) of the field: the value, then NULs.
  void GetCustomString(std::span<char> buffer) const;
  void GetFileTypeField(std::span<char> buffer) const;

  std::uint32_t BodyLength() const { return bodyLength_; }
  std::uint32_t AttachmentLength() const { return attachmentLength_; }
  std::int32_t FaxStatus() const { return faxStatus_; }
  std::int32_t NumRetries() const { return numRetries_; }
  std::int32_t CallDuration() const { return callDuration_; }
  std::int32_t PagesTransferred() const { return pagesTransferred_; }
  std::int32_t DeliveryTime() const { return deliveryTime_; }

 private:
  bool ReadLine(std::string &line);
  bool CopyBlock(std::uint64_t length, std::string_view targetPath);
  bool EndLineFollows(HeaderKeyword endKeyword);

  MessageInput input_;
  bool writeFailed_ = false;
  std::string line_;

  std::string sender_;
  std::string recipient_;
  std::string subject_;
  std::uint32_t bodyLength_ = 0;
  std::string attachmentName_;
  std::uint32_t attachmentLength_ = 0;
  std::string customString_;
  std::int32_t faxStatus_ = 0;
  std::string faxStatusInfo_;
  std::int32_t numRetries_ = 0;
  std::int32_t callDuration_ = 0;
  std::int32_t pagesTransferred_ = 0;
  std::int32_t deliveryTime_ = 0;
  std::string fileType_;
};

}  // namespace tqv
