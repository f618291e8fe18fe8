// `tqv mail in`: one Internet mail message, as an MTA pipe hands it over, becomes one gateway
// message file in the gateway-out directory. The exit code tells the MTA what to do: 65 bounces
// the message with the reason, 77 refuses a sender that may be forged, 75 keeps it queued.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tqv/mail/mail_sender_check.h"
#include "tqv/shared/mail_gateway_file.h"

namespace tqv::tool {

// sysexits: the message cannot be used (the MTA bounces it); try again later (the MTA defers it).
inline constexpr int kExitDataError = 65;
inline constexpr int kExitTemporaryFailure = 75;
// sysexits: permission denied; the MTA bounces the message.
inline constexpr int kExitNoPermission = 77;

// The converter gives up on a message as soon as its recipient or attachment table is full, so a
// full table is already one too many: such messages are bounced here, with the reason.
std::size_t MaxMailRecipients();
std::size_t MaxMailAttachments();
// Larger input is bounced; block lengths must stay far inside what the reader's numbers hold.
inline constexpr std::size_t kMaxMailBytes = 64 * 1024 * 1024;

struct MailEnvelope {
  std::string sender;
  std::vector<std::string> recipients;
};

// The gateway form of a MIME message; nullopt with the reason when it cannot be faxed as it is.
// Without an envelope sender the From: address is taken, without envelope recipients To: and Cc:.
std::optional<GatewayMail> GatewayMailFromMime(std::string_view raw, const MailEnvelope &envelope,
                                               std::string &error);

// A readable file name from the sender's: no directory, no control or reserved characters,
// Windows-1252, short enough for the attachment line. `fallback` names a part without a name.
std::string CleanAttachmentName(std::string_view utf8Name, std::string_view fallback);

// Reads the message from `in`, places its file; the exit code, after one line on `err` if not 0.
// The sender is checked against `check` after the From: fallback, so a null sender cannot slip by.
int RunMailIn(const std::string &gatewayOut, const MailEnvelope &envelope, std::istream &in,
              std::ostream &err, const SenderCheck &check = {});

}  // namespace tqv::tool
