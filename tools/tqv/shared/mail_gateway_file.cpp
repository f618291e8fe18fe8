// Gateway message files for the mail bridge. Writing goes through a held temporary file and a
// link, so a crash leaves at most a stray file in MAILTMP, never half a message for the library.
#include "tqv/shared/mail_gateway_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "gateway/header_keywords.h"
#include "gateway/message_reader.h"

namespace tqv::tool {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
// The reader delivers at most this many bytes as one line when no CR LF comes first.
constexpr std::size_t kReaderLineBytes = 255;
constexpr std::string_view kTempDirectory = "MAILTMP";
// A temporary file this old that nobody holds was left by a writer that died.
constexpr std::time_t kStaleTempSeconds = 60 * 60;

std::string HeaderText(std::string_view value, std::string_view keyword) {
  std::string text;
  for (const char c : value)
    text += static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? ' ' : c;
  if (text.size() > MaxHeaderValue(keyword)) text.resize(MaxHeaderValue(keyword));
  return text;
}

void AppendLine(std::string &out, HeaderKeyword keyword, std::string_view value) {
  out += KeywordText(keyword);
  out += HeaderText(value, KeywordText(keyword));
  out += kLineEnd;
}

std::string Errno(std::string_view what) {
  return std::string(what) + ": " + std::strerror(errno);
}

bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::optional<std::string> ReadWholeFile(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void RemoveStaleTempFiles(const std::string &tempDirectory) {
  std::error_code error;
  for (const auto &entry : std::filesystem::directory_iterator(tempDirectory, error)) {
    struct stat info {};
    if (::stat(entry.path().c_str(), &info) != 0 || !S_ISREG(info.st_mode) ||
        std::time(nullptr) - info.st_mtime < kStaleTempSeconds)
      continue;
    const int fd = ::open(entry.path().c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) continue;
    if (::flock(fd, LOCK_EX | LOCK_NB) == 0) ::unlink(entry.path().c_str());
    ::close(fd);
  }
}

std::string TextOf(const char *buffer) {
  return std::string(buffer);
}

}  // namespace

std::size_t MaxHeaderValue(std::string_view keyword) {
  // The line and its CR must stay within what the reader takes as one line.
  return kReaderLineBytes - 2 - keyword.size();
}

std::string FormatGatewayMail(const GatewayMail &mail) {
  std::string out;
  AppendLine(out, HeaderKeyword::TnefAttach, "");
  AppendLine(out, HeaderKeyword::FileType, "");
  AppendLine(out, HeaderKeyword::MailFrom, mail.sender);
  for (const std::string &recipient : mail.recipients)
    AppendLine(out, HeaderKeyword::RcptTo, recipient);
  AppendLine(out, HeaderKeyword::Subject, mail.subject);
  AppendLine(out, HeaderKeyword::CustomString, mail.customString);

  // Like the library's own writer: the length counts a CR LF after the text, unless it is empty.
  const std::size_t length = mail.body.empty() ? 0 : mail.body.size() + kLineEnd.size();
  AppendLine(out, HeaderKeyword::BeginBody, std::to_string(length));
  out += mail.body;
  if (length > 0) out += kLineEnd;
  out += kLineEnd;
  AppendLine(out, HeaderKeyword::EndBody, "");

  for (const GatewayAttachment &attachment : mail.attachments) {
    AppendLine(out, HeaderKeyword::BeginAttach,
               attachment.name + ":" + std::to_string(attachment.bytes.size()));
    out += attachment.bytes;
    out += kLineEnd;
    AppendLine(out, HeaderKeyword::EndAttach, "");
  }
  return out;
}

std::optional<std::string> PlaceGatewayFile(const std::string &directory, std::string_view bytes,
                                            std::string &error) {
  const std::string tempDirectory = directory + "/" + std::string(kTempDirectory);
  if (::mkdir(tempDirectory.c_str(), 0770) != 0 && errno != EEXIST) {
    error = Errno("cannot create " + tempDirectory);
    return std::nullopt;
  }
  RemoveStaleTempFiles(tempDirectory);
  std::string tempPath = tempDirectory + "/mailXXXXXX";
  const int fd = ::mkstemp(tempPath.data());
  if (fd < 0) {
    error = Errno("cannot create a file in " + tempDirectory);
    return std::nullopt;
  }
  // mkstemp makes the file private; the fax service may run as another user of the same group.
  const mode_t mask = ::umask(0);
  ::umask(mask);
  // Held from the first byte to the close, as every writer of the directory must.
  const bool written =
      ::fchmod(fd, 0666 & ~mask) == 0 && ::flock(fd, LOCK_EX) == 0 && WriteAll(fd, bytes) && ::fsync(fd) == 0;
  if (!written) error = Errno("cannot write " + tempPath);
  std::optional<std::string> name;
  // Names from the clock keep the arrival order in the library's sorted scan.
  for (auto number = static_cast<unsigned long>(std::time(nullptr)); written && !name; ++number) {
    std::array<char, 16> candidate{};
    std::snprintf(candidate.data(), candidate.size(), "%08lX.MSG", number & 0xFFFFFFFFUL);
    if (::link(tempPath.c_str(), (directory + "/" + candidate.data()).c_str()) == 0) {
      name = candidate.data();
    } else if (errno != EEXIST) {
      error = Errno("cannot link the message into " + directory);
      break;
    }
  }
  ::unlink(tempPath.c_str());
  ::close(fd);
  return name;
}

std::optional<GatewayMail> ReadGatewayFile(const std::string &path, const std::string &workDirectory,
                                           bool &busy, std::string &error) {
  busy = false;
  MessageReader reader;
  if (!reader.Open(path)) {
    busy = ::access(path.c_str(), R_OK) == 0;
    error = busy ? "held by its writer" : Errno("cannot read");
    return std::nullopt;
  }
  GatewayMail mail;
  std::array<char, kHeaderFieldSize> field{};
  const std::string blockPath = workDirectory + "/block";
  auto takeBlock = [&blockPath](std::string &into) {
    if (const auto bytes = ReadWholeFile(blockPath)) into += *bytes;
    std::filesystem::remove(blockPath);
  };
  for (bool reading = true; reading;) {
    switch (reader.ReadNext()) {
      case ReadCode::End:
        reading = false;
        break;
      case ReadCode::Malformed:
        error = "attachment line without a name, a colon or a length";
        return std::nullopt;
      case ReadCode::Sender:
        reader.GetSender(field);
        mail.sender = TextOf(field.data());
        break;
      case ReadCode::Recipient: {
        std::array<char, kHeaderFieldSize> name{};
        reader.GetRecipient(name, field);
        mail.recipients.push_back(TextOf(field.data()));
        break;
      }
      case ReadCode::Subject:
        reader.GetSubject(field);
        mail.subject = TextOf(field.data());
        break;
      case ReadCode::CustomString:
        reader.GetCustomString(field);
        field.back() = '\0';
        mail.customString = TextOf(field.data());
        break;
      case ReadCode::FaxStatus:
        mail.faxStatus = reader.FaxStatus();
        break;
      case ReadCode::FaxStatusInfo:
        reader.GetStatusInfo(field);
        mail.faxStatusInfo = TextOf(field.data());
        break;
      case ReadCode::Body:
        if (!reader.ExtractBody(blockPath)) {
          error = "body block cut short or without its end line";
          return std::nullopt;
        }
        takeBlock(mail.body);
        break;
      case ReadCode::Attachment: {
        std::array<char, kMaxAttachmentName + 1> name{};
        reader.GetAttachmentName(name);
        if (!reader.ExtractAttachment(blockPath)) {
          std::filesystem::remove(blockPath);
          error = "attachment block cut short or without its end line";
          return std::nullopt;
        }
        mail.attachments.push_back({TextOf(name.data()), {}});
        takeBlock(mail.attachments.back().bytes);
        break;
      }
      default:
        break;
    }
  }
  if (mail.recipients.empty()) {
    error = "no recipient";
    return std::nullopt;
  }
  return mail;
}

}  // namespace tqv::tool
