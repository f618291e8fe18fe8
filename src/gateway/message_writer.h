// MessageWriter: composes one gateway message file for the mail gateway, "SGWn.TMP" in the
// gateway-in directory. The file is held without sharing from Create to Close, so the gateway
// never takes half a message; a message that could not be written whole is removed at Close.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "gateway/header_keywords.h"
#include "platform/file.h"

namespace tqv {

// The most recipients one message carries.
inline constexpr std::size_t kMaxMessageRecipients = 1024;
// SetCustomString keeps at most this many bytes, so the field always ends in a NUL.
inline constexpr std::size_t kMaxCustomStringBytes = 255;

enum class GatewayDirection { In, Out };

// True when the file exists and is not empty, so that an AddAttachment that failed on it left out
// something it should have carried. Asks the directory only, so it answers also when opens fail.
bool IsAttachable(std::string_view path);

class MessageWriter {
 public:
  MessageWriter() = default;
  ~MessageWriter();
  MessageWriter(const MessageWriter &) = delete;
  MessageWriter &operator=(const MessageWriter &) = delete;

  // Creates the next numbered message file, replacing a file of that name. Fails when a file is
  // already open, a recipient was added before, or the directory cannot be written.
  bool Create(GatewayDirection direction = GatewayDirection::In);

  // Texts keep at most kMaxName characters. Values set after the header lines have been
  // written (by the first AddBody, AddAttachment or Close) do not reach the file. Every value is
  // written up to its first NUL, with CR and LF as blanks and cut to fit one whole line, so a
  // reader finds exactly one value per line whatever the value held.
  void SetSender(std::string_view text);
  void SetSubject(std::string_view text);
  void SetStatusInfo(std::string_view text);
  void SetFileType(std::string_view text);
  // False, storing nothing, when kMaxMessageRecipients are already there.
  bool AddRecipient(std::string_view text);
  // Keeps the bytes as they are (at most kMaxCustomStringBytes); the file gets them up to the first NUL.
  void SetCustomString(std::string_view bytes);
  void SetFaxStatus(std::int32_t value) { faxStatus_ = value; }
  void SetNumRetries(std::int32_t value) { numRetries_ = value; }
  void SetCallDuration(std::int32_t value) { callDuration_ = value; }
  void SetPagesTransferred(std::int32_t value) { pagesTransferred_ = value; }
  // Written both as "Date:" and as "FAX-DeliveryTime:".
  void SetDeliveryTime(std::int32_t value) { deliveryTime_ = value; }

  // A body block of the text followed by the file's contents; a file that cannot be opened, or
  // that would make the block longer than kMaxBlockBytes, contributes nothing. False only when no
  // message file is open.
  bool AddBody(std::string_view text, std::optional<std::string_view> filePath = std::nullopt);
  // A body block of the bytes, written as it stands: before the header lines when they are not
  // yet written. False, writing nothing, for no bytes or no open file.
  bool AddBodyBuffer(std::string_view bytes);
  // An attachment block holding the file, named by the last part of its path (a colon, CR or LF
  // in it written as "_", the name cut to fit the line). False, writing no block, when the path
  // is empty or the file is missing, held by another, empty or longer than kMaxBlockBytes.
  bool AddAttachment(std::string_view filePath);

  // Writes the header lines if no block did, forgets the recipients and closes the file. False
  // when a write failed or a file ran short on the way: the message is then removed, not mailed
  // in part. A writer destroyed without Close releases the file as it stands, without the header lines.
  bool Close();

 private:
  void WriteHeadersOnce();
  std::string HeaderValue(HeaderKeyword keyword) const;
  void WriteBlockStart(HeaderKeyword keyword, std::string_view value);
  void WriteFileContents(platform::File &source, std::uint64_t size);
  void Put(std::string_view bytes);
  void Flush();

  std::vector<std::string> recipients_;
  std::string sender_;
  std::string subject_;
  std::array<char, kMaxCustomStringBytes + 1> customString_{};
  std::int32_t faxStatus_ = 0;
  std::string faxStatusInfo_;
  std::int32_t numRetries_ = 0;
  std::int32_t callDuration_ = 0;
  std::int32_t pagesTransferred_ = 0;
  std::int32_t deliveryTime_ = 0;
  std::string fileType_;
  std::optional<platform::File> file_;
  // Lines put but not yet written: a message goes out in a few writes, not one per line.
  std::string pending_;
  std::string path_;
  bool headersWritten_ = false;
  bool damaged_ = false;  // some bytes of the message never reached the file
};

}  // namespace tqv
