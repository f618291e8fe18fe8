// The sender check of `tqv mail in`. It decides only from what the MTA passed on the command line
// and the login map; a map that cannot be parsed is refused whole, never half applied.
#include "tqv/mail/mail_sender_check.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace tqv::tool {

namespace {

// For the reason line: the MTA quotes it in a bounce, so no value may break it.
std::string OneLine(std::string_view text) {
  std::string line(text);
  for (char &c : line)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
  return line;
}

bool FromTrustedClient(const SenderCheck &check) {
  return std::any_of(check.trustedClients.begin(), check.trustedClients.end(),
                     [&](const ClientNetwork &network) { return network.Contains(check.clientAddress); });
}

std::string NoLoginReason(const SenderCheck &check) {
  return "the sender did not log in and client \"" + OneLine(check.clientAddress) +
         "\" is not trusted, so the sender may be forged";
}

}  // namespace

std::string AddressKey(std::string_view address) {
  std::string key(address);
  const std::size_t at = key.rfind('@');
  if (at != std::string::npos)
    std::transform(key.begin() + static_cast<std::ptrdiff_t>(at), key.end(),
                   key.begin() + static_cast<std::ptrdiff_t>(at),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return key;
}

std::optional<SenderLoginMap> SenderLoginMap::Parse(std::string_view text, std::string &error) {
  SenderLoginMap map;
  std::istringstream lines{std::string(text)};
  int number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    line = line.substr(0, line.find('#'));
    std::replace(line.begin(), line.end(), ',', ' ');
    std::istringstream words(line);
    std::string sender;
    if (!(words >> sender)) continue;
    std::set<std::string> &logins = map.logins_[AddressKey(sender)];
    std::size_t read = 0;
    for (std::string login; words >> login; ++read)
      logins.insert(login);
    if (read == 0 || sender.find('@') == std::string::npos) {
      error = "line " + std::to_string(number) + " is not \"ADDRESS LOGIN...\" or \"@DOMAIN LOGIN...\"";
      return std::nullopt;
    }
  }
  return map;
}

bool SenderLoginMap::Allows(std::string_view login, std::string_view sender) const {
  const std::string key = AddressKey(sender);
  auto found = logins_.find(key);
  // An entry for the address itself wins over its domain's.
  if (found == logins_.end()) {
    const std::size_t at = key.rfind('@');
    if (at != std::string::npos) found = logins_.find(key.substr(at));
  }
  return found != logins_.end() && found->second.count(std::string(login)) != 0;
}

std::string SubmitterRefusal(const SenderCheck &check) {
  if (!check.required || FromTrustedClient(check) || !check.login.empty()) return {};
  return NoLoginReason(check);
}

std::string SenderRefusal(const SenderCheck &check, std::string_view sender) {
  if (!check.required || FromTrustedClient(check)) return {};
  if (check.login.empty()) return NoLoginReason(check);
  const bool allowed = check.loginMap ? check.loginMap->Allows(check.login, sender)
                                      : AddressKey(check.login) == AddressKey(sender);
  if (allowed) return {};
  return "login \"" + OneLine(check.login) + "\" may not send as " + OneLine(sender);
}

}  // namespace tqv::tool
