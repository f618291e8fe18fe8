// The keywords of gateway message files, in the order a written message carries its header lines,
// with the code the reader reports for each. MessageReader and MessageWriter both take their
// keywords from this one table, so what one writes the other recognises. Nothing here can fail.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tqv {

// Every keyword of the format. Header lines come first, in the order of a written file.
enum class HeaderKeyword {
  TnefAttach,
  FileType,
  MailFrom,
  RcptTo,
  Data,
  MessageClass,
  Date,
  MessageId,
  ExternalReceivedBy,
  ExternalReceivedAt,
  ExternalAttemptedBy,
  ExternalDeferredAt,
  InternalReceivedBy,
  InternalReceivedAt,
  InternalAttemptedBy,
  InternalDeferredAt,
  From,
  To,
  Subject,
  Priority,
  Importance,
  CustomString,
  FaxStatus,
  FaxStatusInfo,
  FaxNumRetries,
  FaxCallDuration,
  FaxPagesTransferred,
  FaxDeliveryTime,
  // Block framing, and the reader's end mark.
  BeginBody,
  EndBody,
  BeginAttach,
  EndAttach,
  MapiMailEnd,
};

// What MessageReader::ReadNext found. The numbers are part of the format's history and are kept
// as they are; 7 is not used.
enum class ReadCode : int {
  Malformed = -1,  // an attachment line without a colon, or with length 0
  End = 0,         // end of the file, or the "MAPIMAIL.DAT:" line
  Sender = 1,
  Recipient = 2,
  Subject = 3,
  Body = 4,
  Attachment = 5,
  CustomString = 6,
  FaxStatus = 8,
  FaxStatusInfo = 9,
  NumRetries = 10,
  CallDuration = 11,
  PagesTransferred = 12,
  DeliveryTime = 13,
  FileType = 14,
};

struct HeaderKeywordEntry {
  HeaderKeyword keyword;
  std::string_view text;
  // The code the reader reports; none for the lines it reads past.
  std::optional<ReadCode> readCode;
};

inline constexpr std::array kHeaderKeywords = {
    HeaderKeywordEntry{HeaderKeyword::TnefAttach, "X-Tnef-Attach:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::FileType, "File Type:", ReadCode::FileType},
    HeaderKeywordEntry{HeaderKeyword::MailFrom, "MAIL FROM:", ReadCode::Sender},
    HeaderKeywordEntry{HeaderKeyword::RcptTo, "RCPT TO:", ReadCode::Recipient},
    HeaderKeywordEntry{HeaderKeyword::Data, "DATA:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::MessageClass, "X-Message-Class:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::Date, "Date:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::MessageId, "X-Message-ID:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::ExternalReceivedBy, "External-Received-By:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::ExternalReceivedAt, "External-Received-At:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::ExternalAttemptedBy, "External-Attempted-By:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::ExternalDeferredAt, "External-Deferred-At:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::InternalReceivedBy, "Internal-Received-By:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::InternalReceivedAt, "Internal-Received-At:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::InternalAttemptedBy, "Internal-Attempted-By:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::InternalDeferredAt, "Internal-Deferred-At:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::From, "From:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::To, "TO:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::Subject, "Subject:", ReadCode::Subject},
    HeaderKeywordEntry{HeaderKeyword::Priority, "Priority:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::Importance, "Importance:", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::CustomString, "Custom-String:", ReadCode::CustomString},
    HeaderKeywordEntry{HeaderKeyword::FaxStatus, "FAX-Status:", ReadCode::FaxStatus},
    HeaderKeywordEntry{HeaderKeyword::FaxStatusInfo, "FAX-StatusInfo:", ReadCode::FaxStatusInfo},
    HeaderKeywordEntry{HeaderKeyword::FaxNumRetries, "FAX-NumRetries:", ReadCode::NumRetries},
    HeaderKeywordEntry{HeaderKeyword::FaxCallDuration, "FAX-CallDuration:", ReadCode::CallDuration},
    HeaderKeywordEntry{HeaderKeyword::FaxPagesTransferred,
                       "FAX-PagesTransferred:", ReadCode::PagesTransferred},
    HeaderKeywordEntry{HeaderKeyword::FaxDeliveryTime, "FAX-DeliveryTime:", ReadCode::DeliveryTime},
    HeaderKeywordEntry{HeaderKeyword::BeginBody, "----beginbody:", ReadCode::Body},
    HeaderKeywordEntry{HeaderKeyword::EndBody, "----endbody", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::BeginAttach, "----beginattach:", ReadCode::Attachment},
    HeaderKeywordEntry{HeaderKeyword::EndAttach, "----endattach", std::nullopt},
    HeaderKeywordEntry{HeaderKeyword::MapiMailEnd, "MAPIMAIL.DAT:", ReadCode::End},
};

constexpr std::string_view KeywordText(HeaderKeyword keyword) {
  return kHeaderKeywords[static_cast<std::size_t>(keyword)].text;
}

// The longest line, before its CR LF, that a reader takes whole: it hands out at most 255 bytes
// as one line and reads a longer line's rest as a line of its own, so a value that ran past this
// would start a line of its author's choosing.
inline constexpr std::size_t kMaxHeaderLineChars = 253;

// How many characters of value fit after the keyword on one whole line.
constexpr std::size_t HeaderValueRoom(HeaderKeyword keyword) {
  return kMaxHeaderLineChars - KeywordText(keyword).size();
}

// A block's length is read back as a signed 32-bit number: a longer block cannot be told apart
// from its own data.
inline constexpr std::uint64_t kMaxBlockBytes = 0x7FFFFFFF;

// The header lines a writer puts after "X-Tnef-Attach:", before the first block.
inline constexpr HeaderKeyword kFirstDeferredHeader = HeaderKeyword::FileType;
inline constexpr HeaderKeyword kLastDeferredHeader = HeaderKeyword::FaxDeliveryTime;

namespace header_keywords_detail {

constexpr bool TableFollowsEnum() {
  for (std::size_t i = 0; i < kHeaderKeywords.size(); ++i)
    if (static_cast<std::size_t>(kHeaderKeywords[i].keyword) != i) return false;
  return true;
}

// The reader compares line starts; a keyword that began another would make the match ambiguous.
constexpr bool NoReadKeywordStartsAnother() {
  for (const HeaderKeywordEntry &a : kHeaderKeywords) {
    for (const HeaderKeywordEntry &b : kHeaderKeywords) {
      if (&a == &b || !a.readCode || !b.readCode) continue;
      if (b.text.starts_with(a.text)) return false;
    }
  }
  return true;
}

}  // namespace header_keywords_detail

static_assert(header_keywords_detail::TableFollowsEnum());
static_assert(header_keywords_detail::NoReadKeywordStartsAnother());

}  // namespace tqv
