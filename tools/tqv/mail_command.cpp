// `tqv mail in` and `tqv mail out`: the bridge between an MTA and the gateway directories. A bad
// command line ends with exit code 64 like every tqv command; the rest is in mail_in / mail_out.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "tqv/commands.h"
#include "tqv/mail_in.h"
#include "tqv/mail_out.h"

namespace tqv::tool {

namespace {

struct MailInOptions {
  std::string gatewayOut;
  MailEnvelope envelope;
};

}  // namespace

void AddMailCommand(CLI::App &app, CommandAction &action) {
  CLI::App *mail = app.add_subcommand("mail", "Bridge an MTA and the gateway directories.");
  mail->require_subcommand(1);

  auto in = std::make_shared<MailInOptions>();
  CLI::App *mailIn = mail->add_subcommand(
      "in",
      "Read one mail message on standard input and write it as a gateway message file. Exit 65: "
      "the message cannot be faxed (bounce it); 75: temporary failure (try again).");
  mailIn->add_option("--gateway-out", in->gatewayOut, "The gateway-out directory.")
      ->required()
      ->check(CLI::ExistingDirectory);
  mailIn->add_option("--sender", in->envelope.sender, "Envelope sender (default: the From: address).");
  mailIn->add_option("RECIPIENT", in->envelope.recipients,
                     "Envelope recipients, such as 089123456@fax.example (default: To: and Cc:).");
  mailIn->callback([in, &action] {
    action = [in] { return RunMailIn(in->gatewayOut, in->envelope, std::cin, std::cerr); };
  });

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
