// `tqv mail out` on GMime and sendmail. Reports are machine-made, so they go out with the null
// envelope sender: a report that cannot be delivered must not bounce back into the fax gateway.
#include "tqv/mail/mail_out.h"

#include <gmime/gmime.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <ostream>
#include <thread>

#include "tqv/mail/mail_text.h"

namespace tqv::tool {

namespace {

namespace fs = std::filesystem;

// What a local part without one gets as sender when the text is a name, not an address.
constexpr std::string_view kNameOnlyMailbox = "fax";
// sendmail's "try again later" (EX_TEMPFAIL); 127 is a sendmail that could not be started.
constexpr int kSendmailTemporary = 75;
constexpr int kSendmailMissing = 127;

struct GObjectUnref {
  void operator()(void *object) const { g_object_unref(object); }
};
template <typename T>
using GPtr = std::unique_ptr<T, GObjectUnref>;

struct Mailbox {
  std::string name;
  std::string address;
};

std::string Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(" \t") - first + 1));
}

std::string WithDomain(const std::string &local, std::string_view domain) {
  return domain.empty() ? local : local + "@" + std::string(domain);
}

// An address as the library wrote it: a mail address, "Name <address>", or a bare user name.
std::optional<Mailbox> MailboxOf(std::string_view text, std::string_view domain) {
  const std::string value = Trimmed(text);
  if (value.empty()) return std::nullopt;
  if (value.find('@') != std::string::npos) {
    GPtr<InternetAddressList> list(internet_address_list_parse(nullptr, value.c_str()));
    if (list && internet_address_list_length(list.get()) > 0) {
      InternetAddress *address = internet_address_list_get_address(list.get(), 0);
      if (INTERNET_ADDRESS_IS_MAILBOX(address)) {
        const char *name = internet_address_get_name(address);
        return Mailbox{name ? name : "",
                       internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(address))};
      }
    }
    return std::nullopt;
  }
  if (value.find_first_of(" \t<>()\",;") == std::string::npos) return Mailbox{"", WithDomain(value, domain)};
  return std::nullopt;
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char &c : lower)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

// The content type of an attachment, by its first bytes and then its name.
std::pair<const char *, const char *> ContentTypeOf(const GatewayAttachment &attachment) {
  if (attachment.bytes.starts_with(std::string_view("II*\0", 4)) ||
      attachment.bytes.starts_with(std::string_view("MM\0*", 4)))
    return {"image", "tiff"};
  if (attachment.bytes.starts_with("%PDF-")) return {"application", "pdf"};
  const std::string name = Lower(attachment.name);
  const std::size_t dot = name.rfind('.');
  const std::string extension = dot == std::string::npos ? std::string() : name.substr(dot + 1);
  if (extension == "tif" || extension == "tiff" || extension == "fax") return {"image", "tiff"};
  if (extension == "txt") return {"text", "plain"};
  if (extension == "rtf") return {"application", "rtf"};
  if (extension == "wav") return {"audio", "wav"};
  return {"application", "octet-stream"};
}

GMimeObject *AttachmentPart(const GatewayAttachment &attachment) {
  const auto [type, subtype] = ContentTypeOf(attachment);
  GMimePart *part = g_mime_part_new_with_type(type, subtype);
  if (std::string_view(type) == "text")
    g_mime_object_set_content_type_parameter(GMIME_OBJECT(part), "charset", "windows-1252");
  g_mime_part_set_filename(part, Windows1252ToUtf8(attachment.name).c_str());
  GPtr<GMimeStream> stream(
      g_mime_stream_mem_new_with_buffer(attachment.bytes.data(), attachment.bytes.size()));
  GPtr<GMimeDataWrapper> content(
      g_mime_data_wrapper_new_with_stream(stream.get(), GMIME_CONTENT_ENCODING_DEFAULT));
  g_mime_part_set_content(part, content.get());
  g_mime_part_set_content_encoding(part, GMIME_CONTENT_ENCODING_BASE64);
  return GMIME_OBJECT(part);
}

// A custom string that is a message id ("<left@right>") is what a report answers.
bool IsMessageId(std::string_view text) {
  return text.size() > 4 && text.front() == '<' && text.back() == '>' &&
         text.find('@') != std::string_view::npos && text.find_first_of(" \t") == std::string_view::npos;
}

bool IsTemporaryProblem(int sendmailExit) {
  return sendmailExit == kSendmailTemporary || sendmailExit == kSendmailMissing || sendmailExit < 0;
}

// Runs sendmail with the message on its standard input; its exit code, or -1 when it could not be
// run or was killed.
int Submit(const std::string &sendmail, const OutgoingMail &mail) {
  int pipeEnds[2];
  if (::pipe(pipeEnds) != 0) return -1;
  std::vector<std::string> arguments = {sendmail, "-i", "-f", "<>", "--"};
  arguments.insert(arguments.end(), mail.recipients.begin(), mail.recipients.end());
  std::vector<char *> argv;
  for (std::string &argument : arguments)
    argv.push_back(argument.data());
  argv.push_back(nullptr);
  const pid_t child = ::fork();
  if (child < 0) {
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
    return -1;
  }
  if (child == 0) {
    ::dup2(pipeEnds[0], STDIN_FILENO);
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
    ::execv(argv[0], argv.data());
    ::_exit(kSendmailMissing);
  }
  ::close(pipeEnds[0]);
  std::string_view left = mail.bytes;
  while (!left.empty()) {
    const ssize_t written = ::write(pipeEnds[1], left.data(), left.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) break;  // sendmail stopped reading; its exit code tells why
    left.remove_prefix(static_cast<std::size_t>(written));
  }
  ::close(pipeEnds[1]);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  if (!WIFEXITED(status)) return -1;
  // A sendmail that stopped reading early has not taken the whole message.
  return left.empty() || WEXITSTATUS(status) != 0 ? WEXITSTATUS(status) : -1;
}

// Moves the file into the failed folder under a name not yet taken there.
bool MoveToFailed(const fs::path &file, std::error_code &error) {
  const fs::path folder = file.parent_path() / kFailedFolder;
  fs::create_directory(folder, error);
  if (error) return false;
  fs::path target = folder / file.filename();
  for (int n = 1; fs::exists(target); ++n)
    target = folder / (file.filename().string() + "." + std::to_string(n));
  fs::rename(file, target, error);
  return !error;
}

bool TooOld(const fs::path &file) {
  struct stat info {};
  if (::stat(file.c_str(), &info) != 0) return false;
  return std::time(nullptr) - info.st_mtime > static_cast<std::time_t>(kMaxRetryDays) * 24 * 60 * 60;
}

bool IsGatewayMessageName(const std::string &name) {
  return name.size() > 4 && Lower(name.substr(name.size() - 4)) == ".tmp";
}

volatile std::sig_atomic_t stopRequested = 0;

void RequestStop(int) {
  stopRequested = 1;
}

}  // namespace

std::optional<OutgoingMail> ComposeMail(const GatewayMail &mail, std::string_view domain,
                                        std::string &error) {
  StartGMime();
  GPtr<GMimeMessage> message(g_mime_message_new(TRUE));
  const std::string senderText = Windows1252ToUtf8(mail.sender);
  std::optional<Mailbox> from = MailboxOf(senderText, domain);
  // A name such as a fax recipient's: shown as the name, on the gateway's own address.
  if (!from) from = Mailbox{Trimmed(senderText), WithDomain(std::string(kNameOnlyMailbox), domain)};
  g_mime_message_add_mailbox(message.get(), GMIME_ADDRESS_TYPE_FROM, from->name.c_str(),
                             from->address.c_str());

  OutgoingMail outgoing;
  for (const std::string &recipient : mail.recipients) {
    const std::optional<Mailbox> to = MailboxOf(Windows1252ToUtf8(recipient), domain);
    if (!to) {
      error = "recipient \"" + Windows1252ToUtf8(recipient) + "\" is no mail address";
      return std::nullopt;
    }
    g_mime_message_add_mailbox(message.get(), GMIME_ADDRESS_TYPE_TO, to->name.c_str(), to->address.c_str());
    outgoing.recipients.push_back(to->address);
  }
  g_mime_message_set_subject(message.get(), Windows1252ToUtf8(mail.subject).c_str(), "utf-8");
  GDateTime *now = g_date_time_new_now_local();
  g_mime_message_set_date(message.get(), now);
  g_date_time_unref(now);
  char *id = g_mime_utils_generate_message_id(domain.empty() ? "localhost" : std::string(domain).c_str());
  g_mime_message_set_message_id(message.get(), id);
  g_free(id);

  GMimeObject *headers = GMIME_OBJECT(message.get());
  if (IsMessageId(mail.customString)) {
    g_mime_object_set_header(headers, "In-Reply-To", mail.customString.c_str(), nullptr);
    g_mime_object_set_header(headers, "References", mail.customString.c_str(), nullptr);
  }
  g_mime_object_set_header(headers, "Auto-Submitted", "auto-generated", nullptr);
  g_mime_object_set_header(headers, "X-Fax-Status", std::to_string(mail.faxStatus).c_str(), nullptr);
  if (!mail.faxStatusInfo.empty())
    g_mime_object_set_header(headers, "X-Fax-Status-Info", Windows1252ToUtf8(mail.faxStatusInfo).c_str(),
                             "utf-8");

  GPtr<GMimeTextPart> text(g_mime_text_part_new_with_subtype("plain"));
  g_mime_text_part_set_text(text.get(), WithLf(Windows1252ToUtf8(mail.body)).c_str());
  if (mail.attachments.empty()) {
    g_mime_message_set_mime_part(message.get(), GMIME_OBJECT(text.get()));
  } else {
    GPtr<GMimeMultipart> mixed(g_mime_multipart_new_with_subtype("mixed"));
    g_mime_multipart_add(mixed.get(), GMIME_OBJECT(text.get()));
    for (const GatewayAttachment &attachment : mail.attachments) {
      GPtr<GMimeObject> part(AttachmentPart(attachment));
      g_mime_multipart_add(mixed.get(), part.get());
    }
    g_mime_message_set_mime_part(message.get(), GMIME_OBJECT(mixed.get()));
  }
  g_mime_object_encode(GMIME_OBJECT(message.get()), GMIME_ENCODING_CONSTRAINT_7BIT);
  char *bytes = g_mime_object_to_string(GMIME_OBJECT(message.get()), nullptr);
  outgoing.bytes = bytes;
  g_free(bytes);
  return outgoing;
}

bool RunMailOutPass(const MailOutOptions &options, std::ostream &log, PassCounts &counts) {
  std::error_code error;
  std::vector<fs::path> files;
  for (const fs::directory_entry &entry : fs::directory_iterator(options.gatewayIn, error))
    if (entry.is_regular_file() && IsGatewayMessageName(entry.path().filename().string()))
      files.push_back(entry.path());
  if (error) return false;
  std::sort(files.begin(), files.end());

  char workTemplate[] = "/tmp/tqv-mail-out-XXXXXX";
  if (::mkdtemp(workTemplate) == nullptr) return false;
  const std::string work = workTemplate;
  for (const fs::path &file : files) {
    const std::string name = file.filename().string();
    auto fail = [&](const std::string &reason) {
      std::error_code moveError;
      if (MoveToFailed(file, moveError))
        log << "failed: " << name << " moved to " << kFailedFolder << "/: " << reason << std::endl;
      else
        log << "failed: " << name << ": " << reason << "; cannot move it: " << moveError.message()
            << std::endl;
      ++counts.failed;
    };
    bool busy = false;
    std::string reason;
    const std::optional<GatewayMail> mail = ReadGatewayFile(file.string(), work, busy, reason);
    if (busy) continue;  // its writer has not finished it yet
    if (!mail) {
      fail(reason);
      continue;
    }
    const std::optional<OutgoingMail> outgoing = ComposeMail(*mail, options.domain, reason);
    if (!outgoing) {
      fail(reason);
      continue;
    }
    const int exitCode = Submit(options.sendmail, *outgoing);
    if (exitCode == 0) {
      fs::remove(file, error);
      log << "sent: " << name << " to " << outgoing->recipients.front()
          << (outgoing->recipients.size() > 1 ? " and others" : "") << std::endl;
      ++counts.sent;
    } else if (!IsTemporaryProblem(exitCode)) {
      fail("sendmail refused it with exit code " + std::to_string(exitCode));
    } else if (TooOld(file)) {
      fail("not accepted by sendmail for " + std::to_string(kMaxRetryDays) + " days");
    } else {
      log << "kept: " << name << ": sendmail did not take it (exit code " << exitCode
          << "); tried again later" << std::endl;
      ++counts.kept;
    }
  }
  fs::remove_all(work, error);
  return true;
}

int RunMailOut(const MailOutOptions &options, std::ostream &out, std::ostream &err) {
  // A sendmail that dies early must not take this process with it.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGINT, RequestStop);
  std::signal(SIGTERM, RequestStop);
  do {
    PassCounts counts;
    if (!RunMailOutPass(options, out, counts)) {
      err << "tqv mail out: cannot read the directory " << options.gatewayIn << "\n";
      return 1;
    }
    if (options.once) {
      out << "done: " << counts.sent << " sent, " << counts.kept << " kept, " << counts.failed << " failed"
          << std::endl;
      break;
    }
    for (int tenth = 0; tenth < options.intervalSeconds * 10 && !stopRequested; ++tenth)
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
  } while (!stopRequested);
  return 0;
}

}  // namespace tqv::tool
