// `tqv mail in` and `tqv mail out`: the bridge between an MTA and the gateway directories. A bad
// command line ends with exit code 64 like every tqv command; the rest is in mail_in / mail_out.
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "tqv/commands.h"
#include "tqv/mail/mail_in.h"
#include "tqv/mail/mail_out.h"

namespace tqv::tool {

namespace {

struct MailInOptions {
  std::string gatewayOut;
  MailEnvelope envelope;
  SenderCheck check;
  std::string loginMapFile;
};

const CLI::Validator kClientNetwork(
    [](std::string &value) {
      return ClientNetwork::Parse(value) ? std::string() : "not an IP address or network (ADDRESS[/BITS])";
    },
    "ADDRESS[/BITS]", "ClientNetwork");

int RunMailInCommand(MailInOptions &options) {
  if (!options.loginMapFile.empty()) {
    std::ifstream file(options.loginMapFile, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    std::string error = file.bad() || !file.is_open() ? "cannot be read" : "";
    if (error.empty()) options.check.loginMap = SenderLoginMap::Parse(text, error);
    // A broken map is the installation's fault, not the sender's: the mail waits until it is fixed.
    if (!options.check.loginMap) {
      std::cerr << "tqv mail in: sender login map " << options.loginMapFile << ": " << error << "\n";
      return kExitTemporaryFailure;
    }
  }
  return RunMailIn(options.gatewayOut, options.envelope, std::cin, std::cerr, options.check);
}

}  // namespace

void AddMailCommand(CLI::App &app, CommandAction &action) {
  CLI::App *mail = app.add_subcommand("mail", "Bridge an MTA and the gateway directories.");
  mail->require_subcommand(1);

  auto in = std::make_shared<MailInOptions>();
  CLI::App *mailIn = mail->add_subcommand(
      "in",
      "Read one mail message on standard input and write it as a gateway message file. Exit 65: "
      "the message cannot be faxed (bounce it); 77: the sender is refused by --require-auth (bounce "
      "it); 75: temporary failure (try again).");
  mailIn->add_option("--gateway-out", in->gatewayOut, "The gateway-out directory.")
      ->required()
      ->check(CLI::ExistingDirectory);
  mailIn->add_option("--sender", in->envelope.sender, "Envelope sender (default: the From: address).");
  mailIn->add_option("RECIPIENT", in->envelope.recipients,
                     "Envelope recipients, such as 089123456@fax.example (default: To: and Cc:).");
  CLI::Option *requireAuth = mailIn->add_flag(
      "--require-auth", in->check.required,
      "Refuse (exit 77) mail whose sender is not the login given with --sasl-user (or one the "
      "--sender-logins map allows it), unless it comes from a --trusted-client. The sender is the "
      "envelope sender, or From: without one; domains are compared without regard to case.");
  mailIn->add_option("--sasl-user", in->check.login,
                     "The login the MTA authenticated, empty for none (Postfix pipe: ${sasl_username}).");
  mailIn->add_option("--client-address", in->check.clientAddress,
                     "The network address of the submitting client (Postfix pipe: ${client_address}).");
  mailIn
      ->add_option_function<std::vector<std::string>>(
          "--trusted-client",
          [in](const std::vector<std::string> &networks) {
            for (const std::string &network : networks)
              in->check.trustedClients.push_back(*ClientNetwork::Parse(network));
          },
          "A client address or network (192.0.2.10, 192.0.2.0/24, 2001:db8::/32) whose mail needs no "
          "login; may be repeated.")
      ->check(kClientNetwork)
      ->needs(requireAuth);
  mailIn
      ->add_option("--sender-logins", in->loginMapFile,
                   "A file of \"SENDER LOGIN...\" lines (SENDER an address or @domain) saying which "
                   "logins may send as which senders; without it a login may send only as itself.")
      ->check(CLI::ExistingFile)
      ->needs(requireAuth);
  mailIn->callback([in, &action] { action = [in] { return RunMailInCommand(*in); }; });

  auto out = std::make_shared<MailOutOptions>();
  CLI::App *mailOut = mail->add_subcommand(
      "out",
      "Send every complete gateway message file of the gateway-in directory with sendmail; damaged "
      "files go to its folder failed/.");
  mailOut->add_option("--gateway-in", out->gatewayIn, "The gateway-in directory.")
      ->required()
      ->check(CLI::ExistingDirectory);
  mailOut->add_option("--domain", out->domain, "Domain for addresses that have none.");
  mailOut->add_option("--sendmail", out->sendmail, "The sendmail program.")
      ->capture_default_str()
      ->check(CLI::ExistingFile);
  mailOut->add_flag("--once", out->once, "One pass over the directory, then stop.");
  mailOut->add_option("--interval", out->intervalSeconds, "Pause between passes in seconds.")
      ->check(CLI::Range(1, 86400))
      ->capture_default_str();
  mailOut->callback([out, &action] { action = [out] { return RunMailOut(*out, std::cout, std::cerr); }; });
}

}  // namespace tqv::tool
