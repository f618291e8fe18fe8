// `tqv mail out`: every complete gateway message file of the gateway-in directory becomes a MIME
// message handed to sendmail. A file is deleted only once sendmail accepted its message; a damaged
// one, one that sendmail refuses for good, or one that could not be sent for kMaxRetryDays goes
// to the folder "failed" beside it, so no file is lost and none is retried forever.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tqv/shared/mail_gateway_file.h"

namespace tqv::tool {

inline constexpr int kMaxRetryDays = 5;
inline constexpr std::string_view kFailedFolder = "failed";

struct MailOutOptions {
  std::string gatewayIn;
  // Added to addresses that have none; empty leaves them to the MTA.
  std::string domain;
  std::string sendmail = "/usr/sbin/sendmail";
  bool once = false;
  int intervalSeconds = 10;
};

// The message as sendmail receives it (LF line ends), and the envelope recipients.
struct OutgoingMail {
  std::string bytes;
  std::vector<std::string> recipients;
};

// nullopt with the reason when a recipient is no mail address.
std::optional<OutgoingMail> ComposeMail(const GatewayMail &mail, std::string_view domain, std::string &error);

struct PassCounts {
  int sent = 0;
  int kept = 0;
  int failed = 0;
};

// One pass over the directory, one line on `log` per file. False when the directory is missing.
bool RunMailOutPass(const MailOutOptions &options, std::ostream &log, PassCounts &counts);

int RunMailOut(const MailOutOptions &options, std::ostream &out, std::ostream &err);

}  // namespace tqv::tool
