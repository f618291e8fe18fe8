// `tqv mail in` on GMime. The message is parsed and turned into the gateway form in memory; only
// a complete file is ever placed, so a failure at any point leaves the gateway-out directory as
// it was.
#include "tqv/mail/mail_in.h"

#include <gmime/gmime.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <istream>
#include <iterator>
#include <memory>
#include <ostream>

#include "outgoing/conversion_tables.h"
#include "tqv/mail/mail_text.h"

namespace tqv::tool {

namespace {

constexpr std::string_view kReservedNameCharacters = "<>:\"/\\|?*";
// Room for the longest length number on the attachment line.
constexpr std::size_t kMaxNameCharacters = 200;
constexpr std::size_t kMaxExtension = 10;

struct GObjectUnref {
  void operator()(void *object) const { g_object_unref(object); }
};
template <typename T>
using GPtr = std::unique_ptr<T, GObjectUnref>;

std::string StreamBytes(GMimeStream *stream) {
  GByteArray *array = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(stream));
  return std::string(reinterpret_cast<const char *>(array->data), array->len);
}

// The part's content with its transfer encoding undone.
std::string DecodedContent(GMimePart *part) {
  GMimeDataWrapper *content = g_mime_part_get_content(part);
  if (content == nullptr) return {};
  GPtr<GMimeStream> stream(g_mime_stream_mem_new());
  g_mime_data_wrapper_write_to_stream(content, stream.get());
  return StreamBytes(stream.get());
}

std::string TextOfPart(GMimePart *part) {
  const char *charset = g_mime_object_get_content_type_parameter(GMIME_OBJECT(part), "charset");
  return ToUtf8(DecodedContent(part), charset ? charset : "");
}

std::string ExtensionFor(GMimeContentType *type) {
  const char *subtype = g_mime_content_type_get_media_subtype(type);
  std::string extension = subtype ? subtype : "";
  for (char &c : extension)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (extension == "plain") return "txt";
  if (extension == "tiff") return "tif";
  if (extension == "jpeg") return "jpg";
  if (extension == "rfc822") return "eml";
  const bool plain = !extension.empty() && extension.size() <= 5 &&
                     extension.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789") == std::string::npos;
  return plain ? extension : "bin";
}

// What the walk over the MIME tree found.
struct MimeContent {
  std::vector<GMimePart *> plainTexts;
  GMimePart *html = nullptr;
  std::vector<GMimeObject *> attachments;
};

// Unnamed inline text is the message text; everything else that carries content is an attachment,
// except the pictures an HTML text shows inline (a logo in a signature is no page to fax).
void Collect(GMimeObject *object, MimeContent &content, bool insideRelated = false) {
  if (GMIME_IS_MULTIPART(object)) {
    GMimeMultipart *multipart = GMIME_MULTIPART(object);
    const bool related = insideRelated || g_mime_content_type_is_type(g_mime_object_get_content_type(object),
                                                                      "multipart", "related");
    for (int i = 0; i < g_mime_multipart_get_count(multipart); ++i)
      Collect(g_mime_multipart_get_part(multipart, i), content, related);
  } else if (insideRelated && g_mime_object_get_content_id(object) != nullptr &&
             !(GMIME_IS_PART(object) && g_mime_part_is_attachment(GMIME_PART(object)))) {
    return;
  } else if (GMIME_IS_MESSAGE_PART(object)) {
    content.attachments.push_back(object);
  } else if (GMIME_IS_PART(object)) {
    GMimePart *part = GMIME_PART(object);
    GMimeContentType *type = g_mime_object_get_content_type(object);
    const bool inlineText = g_mime_part_get_filename(part) == nullptr && !g_mime_part_is_attachment(part) &&
                            g_mime_content_type_is_type(type, "text", "*");
    if (!inlineText)
      content.attachments.push_back(object);
    else if (g_mime_content_type_is_type(type, "text", "plain"))
      content.plainTexts.push_back(part);
    else if (g_mime_content_type_is_type(type, "text", "html") && content.html == nullptr)
      content.html = part;
  }
}

std::string BodyText(const MimeContent &content) {
  std::string text;
  for (GMimePart *part : content.plainTexts) {
    if (!text.empty()) text += "\n\n";
    text += TextOfPart(part);
  }
  if (content.plainTexts.empty() && content.html != nullptr) text = TextFromHtml(TextOfPart(content.html));
  return WithCrLf(Utf8ToWindows1252(text));
}

std::optional<GatewayAttachment> AttachmentOf(GMimeObject *object, std::size_t number) {
  GMimeContentType *type = g_mime_object_get_content_type(object);
  const std::string fallback = "attachment" + std::to_string(number) + "." + ExtensionFor(type);
  GatewayAttachment attachment;
  if (GMIME_IS_MESSAGE_PART(object)) {
    GMimeMessage *message = g_mime_message_part_get_message(GMIME_MESSAGE_PART(object));
    if (message == nullptr) return std::nullopt;
    GPtr<GMimeStream> stream(g_mime_stream_mem_new());
    g_mime_object_write_to_stream(GMIME_OBJECT(message), nullptr, stream.get());
    attachment.bytes = StreamBytes(stream.get());
    attachment.name = CleanAttachmentName("", "message" + std::to_string(number) + ".eml");
  } else {
    GMimePart *part = GMIME_PART(object);
    attachment.bytes = DecodedContent(part);
    const char *name = g_mime_part_get_filename(part);
    attachment.name = CleanAttachmentName(name ? name : "", fallback);
  }
  // The format has no empty attachment: the reader takes length 0 as a damaged message.
  if (attachment.bytes.empty()) return std::nullopt;
  return attachment;
}

std::string FirstAddress(InternetAddressList *list) {
  if (list == nullptr) return {};
  for (int i = 0; i < internet_address_list_length(list); ++i) {
    InternetAddress *address = internet_address_list_get_address(list, i);
    if (INTERNET_ADDRESS_IS_MAILBOX(address))
      return internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(address));
  }
  return {};
}

void AppendAddresses(InternetAddressList *list, std::vector<std::string> &addresses) {
  if (list == nullptr) return;
  for (int i = 0; i < internet_address_list_length(list); ++i) {
    InternetAddress *address = internet_address_list_get_address(list, i);
    if (INTERNET_ADDRESS_IS_MAILBOX(address))
      addresses.emplace_back(internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(address)));
    else if (INTERNET_ADDRESS_IS_GROUP(address))
      AppendAddresses(internet_address_group_get_members(INTERNET_ADDRESS_GROUP(address)), addresses);
  }
}

// An address the file can carry whole: a cut one would reach someone else.
bool FitsHeader(std::string_view address, std::string_view keyword) {
  return address.size() <= MaxHeaderValue(keyword) &&
         std::none_of(address.begin(), address.end(),
                      [](char c) { return static_cast<unsigned char>(c) < 0x20; });
}

}  // namespace

std::size_t MaxMailRecipients() {
  return kMessageRecipientLimit - 1;
}

std::size_t MaxMailAttachments() {
  return kMessageAttachmentLimit - 1;
}

std::string CleanAttachmentName(std::string_view utf8Name, std::string_view fallback) {
  const std::size_t separator = utf8Name.find_last_of("/\\");
  if (separator != std::string_view::npos) utf8Name.remove_prefix(separator + 1);
  std::string name = Utf8ToWindows1252(utf8Name);
  for (char &c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F || kReservedNameCharacters.find(c) != std::string_view::npos) c = '_';
  }
  // Windows drops trailing dots and blanks; leading ones would hide the file or climb directories.
  const std::size_t first = name.find_first_not_of(". ");
  const std::size_t last = name.find_last_not_of(". ");
  name = first == std::string::npos ? std::string() : name.substr(first, last - first + 1);
  if (name.empty()) name = fallback;
  if (name.size() > kMaxNameCharacters) {
    const std::size_t dot = name.rfind('.');
    const std::string extension =
        dot != std::string::npos && name.size() - dot <= kMaxExtension + 1 ? name.substr(dot) : std::string();
    name = name.substr(0, kMaxNameCharacters - extension.size()) + extension;
  }
  return name;
}

std::optional<GatewayMail> GatewayMailFromMime(std::string_view raw, const MailEnvelope &envelope,
                                               std::string &error) {
  if (raw.find_first_not_of(" \t\r\n") == std::string_view::npos) {
    error = "empty message";
    return std::nullopt;
  }
  StartGMime();
  GPtr<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(raw.data(), raw.size()));
  GPtr<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
  GPtr<GMimeMessage> message(g_mime_parser_construct_message(parser.get(), nullptr));
  if (!message) {
    error = "not a mail message";
    return std::nullopt;
  }

  GatewayMail mail;
  mail.sender = envelope.sender;
  if (mail.sender.empty() || mail.sender == "<>")
    mail.sender = FirstAddress(g_mime_message_get_from(message.get()));
  if (mail.sender.empty()) {
    error = "no sender: neither an envelope sender nor a From: address";
    return std::nullopt;
  }
  if (!FitsHeader(mail.sender, "MAIL FROM:")) {
    error = "sender address too long or with control characters";
    return std::nullopt;
  }

  for (const std::string &recipient : envelope.recipients)
    if (!recipient.empty()) mail.recipients.push_back(recipient);
  if (mail.recipients.empty()) {
    AppendAddresses(g_mime_message_get_addresses(message.get(), GMIME_ADDRESS_TYPE_TO), mail.recipients);
    AppendAddresses(g_mime_message_get_addresses(message.get(), GMIME_ADDRESS_TYPE_CC), mail.recipients);
  }
  if (mail.recipients.empty()) {
    error = "no recipient";
    return std::nullopt;
  }
  if (mail.recipients.size() > MaxMailRecipients()) {
    error = "more than " + std::to_string(MaxMailRecipients()) + " recipients in one message";
    return std::nullopt;
  }
  for (const std::string &recipient : mail.recipients) {
    if (!FitsHeader(recipient, "RCPT TO:")) {
      error = "recipient address too long or with control characters";
      return std::nullopt;
    }
  }

  const char *subject = g_mime_message_get_subject(message.get());
  mail.subject = Utf8ToWindows1252(ToUtf8(subject ? subject : "", "UTF-8"));
  if (const char *id = g_mime_message_get_message_id(message.get()))
    mail.customString = "<" + std::string(id) + ">";

  MimeContent content;
  if (GMimeObject *body = g_mime_message_get_mime_part(message.get())) Collect(body, content);
  if (content.attachments.size() > MaxMailAttachments()) {
    error = "more than " + std::to_string(MaxMailAttachments()) + " attachments in one message";
    return std::nullopt;
  }
  mail.body = BodyText(content);
  for (GMimeObject *object : content.attachments) {
    if (auto attachment = AttachmentOf(object, mail.attachments.size() + 1))
      mail.attachments.push_back(std::move(*attachment));
  }
  return mail;
}

int RunMailIn(const std::string &gatewayOut, const MailEnvelope &envelope, std::istream &in,
              std::ostream &err, const SenderCheck &check) {
  std::string raw;
  std::array<char, 64 * 1024> piece{};
  while (in.read(piece.data(), piece.size()) || in.gcount() > 0) {
    raw.append(piece.data(), static_cast<std::size_t>(in.gcount()));
    if (raw.size() > kMaxMailBytes) {
      err << "tqv mail in: message larger than " << kMaxMailBytes / (1024 * 1024) << " MiB\n";
      return kExitDataError;
    }
  }
  if (in.bad()) {
    err << "tqv mail in: cannot read the message from standard input\n";
    return kExitTemporaryFailure;
  }
  // Before parsing: a submission nobody vouches for is refused for that, whatever its content.
  if (const std::string refusal = SubmitterRefusal(check); !refusal.empty()) {
    err << "tqv mail in: " << refusal << "\n";
    return kExitNoPermission;
  }
  std::string error;
  const std::optional<GatewayMail> mail = GatewayMailFromMime(raw, envelope, error);
  if (!mail) {
    err << "tqv mail in: " << error << "\n";
    return kExitDataError;
  }
  if (const std::string refusal = SenderRefusal(check, mail->sender); !refusal.empty()) {
    err << "tqv mail in: " << refusal << "\n";
    return kExitNoPermission;
  }
  if (!PlaceGatewayFile(gatewayOut, FormatGatewayMail(*mail), error)) {
    err << "tqv mail in: " << error << "\n";
    return kExitTemporaryFailure;
  }
  return 0;
}

}  // namespace tqv::tool
