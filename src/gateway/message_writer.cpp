// MessageWriter: the header lines in the order of the keyword table, and the body and attachment
// blocks. A message that a write error or a short source left incomplete is removed at Close.
#include "gateway/message_writer.h"

#include <algorithm>
#include <memory>
#include <string>

#include "common/path_helpers.h"
#include "common/text_limits.h"
#include "config/service_state.h"
#include "gateway/message_counter.h"
#include "platform/file_system.h"

namespace tqv {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
// Lines are gathered up to this many bytes before they are written.
constexpr std::size_t kFlushSize = 64 * 1024;
constexpr std::string_view kFileNamePrefix = "SGW";
constexpr std::string_view kFileNameExtension = ".TMP";
// Names taken by links or special files that one message passes over before it gives up.
constexpr int kTakenNamesPassedOver = 64;
constexpr std::string_view kMessageClass = "IPM.NOTE";
constexpr std::string_view kNormal = "Normal";

// "From:" and "TO:" repeat the lines the reader takes the sender and the recipients from, and
// carry the same cut of their values.
HeaderKeyword ReadFromLine(HeaderKeyword keyword) {
  switch (keyword) {
    case HeaderKeyword::From:
      return HeaderKeyword::MailFrom;
    case HeaderKeyword::To:
      return HeaderKeyword::RcptTo;
    default:
      return keyword;
  }
}

// A value on a line of its own, whoever chose it: it ends at a NUL as the C string it is on both
// sides of the gateway, a CR or LF in it becomes a blank, and it is cut so that the line is read
// whole. Otherwise its rest would be read as a line of the sender's choosing, a recipient say.
std::string Line(HeaderKeyword keyword, std::string_view value) {
  value = value.substr(0, std::min(value.find('\0'), HeaderValueRoom(ReadFromLine(keyword))));
  std::string line(KeywordText(keyword));
  for (const char c : value)
    line += c == '\r' || c == '\n' ? ' ' : c;
  line += kLineEnd;
  return line;
}

std::string BlockEnd(HeaderKeyword endKeyword) {
  std::string lines(kLineEnd);
  lines += Line(endKeyword, "");
  return lines;
}

// The name an attachment travels under: the part after the last separator.
std::string_view FileNamePart(std::string_view path) {
  const std::size_t separator = path.find_last_of("\\/");
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

// "name:length" for an attachment line. The reader ends the name at its first colon and the
// line at a CR LF, so neither may stand in the name, and the name gives way to the length where
// the line would run over: a misread length would let the file's data be read as lines.
std::string AttachmentLineValue(std::string_view name, std::uint64_t size) {
  const std::string length = ":" + std::to_string(size);
  const std::size_t room = HeaderValueRoom(HeaderKeyword::BeginAttach) - length.size();
  std::string value;
  for (const char c : name.substr(0, room))
    value += c == ':' || c == '\r' || c == '\n' || c == '\0' ? '_' : c;
  return value + length;
}

std::string Cut(std::string_view text) {
  std::string copy(text);
  return CutText(copy, kMaxName);
}

}  // namespace

bool IsAttachable(std::string_view path) {
  if (path.empty()) return false;
  const std::optional<platform::EntryInfo> entry = platform::GetEntryInfo(path);
  return entry && !entry->isDirectory && entry->size > 0;
}

bool MessageWriter::Create(GatewayDirection direction) {
  if (file_ || !recipients_.empty()) return false;
  const ServiceState &service = CurrentService();
  std::string directory =
      direction == GatewayDirection::In ? service.gatewayInDirectory : service.gatewayOutDirectory;
  AppendBackslash(directory);
  std::string path;
  // A link, special file or directory that someone left under the next name is passed over, never
  // written through; a plain file there is a message not yet taken and is replaced as before.
  for (int attempt = 0; !file_ && attempt < kTakenNamesPassedOver; ++attempt) {
    path = directory + std::string(kFileNamePrefix) + std::to_string(NextMessageId()) +
           std::string(kFileNameExtension);
    CutText(path, kMaxPath);
    // Made as new first: the number is almost always free, and this spares a look for it.
    file_ = platform::File::Open(path, platform::FileAccess::Write, platform::FileSharing::None,
                                 platform::FileCreation::CreateNew);
    if (file_) break;
    const std::optional<platform::EntryInfo> taken = platform::GetEntryInfo(path);
    if (!taken) return false;
    if (taken->isRegularFile) {
      file_ = platform::File::CreateExclusive(path);
      if (!file_) return false;
    }
  }
  if (!file_) return false;
  path_ = path;
  headersWritten_ = false;
  damaged_ = false;
  Put(Line(HeaderKeyword::TnefAttach, ""));
  return true;
}

void MessageWriter::SetSender(std::string_view text) {
  sender_ = Cut(text);
}

void MessageWriter::SetSubject(std::string_view text) {
  subject_ = Cut(text);
}

void MessageWriter::SetStatusInfo(std::string_view text) {
  faxStatusInfo_ = Cut(text);
}

void MessageWriter::SetFileType(std::string_view text) {
  fileType_ = Cut(text);
}

bool MessageWriter::AddRecipient(std::string_view text) {
  if (recipients_.size() >= kMaxMessageRecipients) return false;
  recipients_.push_back(Cut(text));
  return true;
}

void MessageWriter::SetCustomString(std::string_view bytes) {
  customString_.fill('\0');
  std::copy_n(bytes.begin(), std::min(bytes.size(), kMaxCustomStringBytes), customString_.begin());
}

std::string MessageWriter::HeaderValue(HeaderKeyword keyword) const {
  switch (keyword) {
    case HeaderKeyword::FileType:
      return fileType_;
    case HeaderKeyword::MailFrom:
    case HeaderKeyword::From:
      return sender_;
    case HeaderKeyword::MessageClass:
      return std::string(kMessageClass);
    case HeaderKeyword::Date:
    case HeaderKeyword::FaxDeliveryTime:
      return std::to_string(deliveryTime_);
    case HeaderKeyword::Subject:
      return subject_;
    case HeaderKeyword::Priority:
    case HeaderKeyword::Importance:
      return std::string(kNormal);
    case HeaderKeyword::CustomString:
      return std::string(customString_.data());
    case HeaderKeyword::FaxStatus:
      return std::to_string(faxStatus_);
    case HeaderKeyword::FaxStatusInfo:
      return faxStatusInfo_;
    case HeaderKeyword::FaxNumRetries:
      return std::to_string(numRetries_);
    case HeaderKeyword::FaxCallDuration:
      return std::to_string(callDuration_);
    case HeaderKeyword::FaxPagesTransferred:
      return std::to_string(pagesTransferred_);
    default:  // "DATA:", "X-Message-ID:" and the External-/Internal- lines stay empty
      return {};
  }
}

void MessageWriter::WriteHeadersOnce() {
  if (headersWritten_ || !file_) return;
  headersWritten_ = true;
  std::string lines;
  for (auto index = static_cast<std::size_t>(kFirstDeferredHeader);
       index <= static_cast<std::size_t>(kLastDeferredHeader); ++index) {
    const HeaderKeyword keyword = kHeaderKeywords[index].keyword;
    if (keyword == HeaderKeyword::RcptTo || keyword == HeaderKeyword::To) {
      for (const std::string &recipient : recipients_)
        lines += Line(keyword, recipient);
    } else {
      lines += Line(keyword, HeaderValue(keyword));
    }
  }
  Put(lines);
}

MessageWriter::~MessageWriter() {
  if (file_) Flush();
}

void MessageWriter::Put(std::string_view bytes) {
  pending_ += bytes;
  if (pending_.size() >= kFlushSize) Flush();
}

void MessageWriter::Flush() {
  if (!pending_.empty() && !file_->Write(pending_)) damaged_ = true;
  pending_.clear();
}

void MessageWriter::WriteFileContents(platform::File &source, std::uint64_t size) {
  Flush();
  // The block's length promised `size` bytes: a short or failed copy damages the message.
  if (platform::CopyBytes(source, *file_, size) != size) damaged_ = true;
}

bool MessageWriter::AddBody(std::string_view text, std::optional<std::string_view> filePath) {
  if (!file_) return false;
  WriteHeadersOnce();
  std::optional<platform::File> source;
  std::uint64_t fileSize = 0;
  if (filePath) source = platform::File::OpenExclusive(*filePath);
  if (source) fileSize = source->Size().value_or(0);
  // A file the block's length cannot count goes as one that cannot be read: the text alone.
  if (text.size() + fileSize + kLineEnd.size() > kMaxBlockBytes) fileSize = 0;

  // The length counts the CR LF that ends the text, unless there is no text at all.
  std::uint64_t length = text.size() + fileSize;
  if (length > 0) length += kLineEnd.size();

  Put(Line(HeaderKeyword::BeginBody, std::to_string(length)));
  if (!text.empty()) Put(text);
  if (fileSize > 0) WriteFileContents(*source, fileSize);
  std::string end = length > 0 ? std::string(kLineEnd) : std::string();
  end += BlockEnd(HeaderKeyword::EndBody);
  Put(end);
  return true;
}

bool MessageWriter::AddBodyBuffer(std::string_view bytes) {
  if (!file_ || bytes.empty() || bytes.size() + kLineEnd.size() > kMaxBlockBytes) return false;
  Put(Line(HeaderKeyword::BeginBody, std::to_string(bytes.size() + kLineEnd.size())));
  Put(bytes);
  Put(std::string(kLineEnd) + BlockEnd(HeaderKeyword::EndBody));
  return true;
}

bool MessageWriter::AddAttachment(std::string_view filePath) {
  if (!file_) return false;
  WriteHeadersOnce();
  std::string path(filePath);
  CutText(path, kMaxPath);
  if (path.empty() || !FileExists(path)) return false;
  std::optional<platform::File> source = platform::File::OpenExclusive(path);
  if (!source) return false;
  const std::uint64_t size = source->Size().value_or(0);
  if (size == 0 || size > kMaxBlockBytes) return false;

  Put(Line(HeaderKeyword::BeginAttach, AttachmentLineValue(FileNamePart(path), size)));
  WriteFileContents(*source, size);
  Put(BlockEnd(HeaderKeyword::EndAttach));
  return true;
}

bool MessageWriter::Close() {
  WriteHeadersOnce();
  recipients_.clear();
  if (!file_) return false;
  Flush();
  file_.reset();
  // The gateway would mail half a message as if it were whole; none at all is the lesser harm.
  if (damaged_) {
    platform::RemoveFile(path_);
    return false;
  }
  return true;
}

}  // namespace tqv
