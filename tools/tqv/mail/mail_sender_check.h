// Whether a mail may come in under its sender: the envelope sender can be forged by anyone, so an
// installation can require that the sender be the login the MTA authenticated, or that the mail
// come from a client it trusts. A refusal is a one-line reason, never an exception.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tqv/mail/mail_client_network.h"

namespace tqv::tool {

// Which logins may send under which senders: "ADDRESS LOGIN..." or "@DOMAIN LOGIN..." per line,
// logins separated by blanks or commas, "#" starts a comment.
class SenderLoginMap {
 public:
  // Nullopt with the reason when a line names no login or the text is no map.
  static std::optional<SenderLoginMap> Parse(std::string_view text, std::string &error);
  bool Allows(std::string_view login, std::string_view sender) const;

 private:
  // Keys with the domain in lower case, so "Anna@Example.TEST" finds "anna@example.test"'s logins
  // only when the local part matches exactly.
  std::map<std::string, std::set<std::string>> logins_;
};

struct SenderCheck {
  bool required = false;
  std::vector<ClientNetwork> trustedClients;
  std::optional<SenderLoginMap> loginMap;  // none: a login may send only as itself
  // What the MTA says of the submission; empty when it knows nothing.
  std::string login;
  std::string clientAddress;
};

// The address with its domain in lower case: domains are compared without regard to case, local
// parts as they are.
std::string AddressKey(std::string_view address);

// Before the message is read: the reason when nothing the MTA said can let any sender in.
std::string SubmitterRefusal(const SenderCheck &check);
// The reason the sender may not use this submission; empty when it may.
std::string SenderRefusal(const SenderCheck &check, std::string_view sender);

}  // namespace tqv::tool
