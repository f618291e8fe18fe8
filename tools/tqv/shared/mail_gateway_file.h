// The mail bridge's side of gateway message files: one message as the bridge holds it, written
// into the gateway-out directory so that it appears only when complete, and read back from the
// gateway-in directory with the library's own reader. Failures are results with a reason.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tqv::tool {

struct GatewayAttachment {
  std::string name;
  std::string bytes;
};

// Texts are Windows-1252; the body has CR LF line ends.
struct GatewayMail {
  std::string sender;
  std::vector<std::string> recipients;
  std::string subject;
  std::string customString;
  std::string body;
  std::vector<GatewayAttachment> attachments;
  std::int32_t faxStatus = 0;
  std::string faxStatusInfo;
};

// The bytes of the gateway message file for `mail`. Header values lose their control characters
// and are cut so that no line outgrows what the reader takes as one line.
std::string FormatGatewayMail(const GatewayMail &mail);

// The longest header value the reader sees whole after `keyword`.
std::size_t MaxHeaderValue(std::string_view keyword);

// Writes `bytes` as a new file of `directory`: first into its subdirectory MAILTMP, held
// exclusively, then linked in under a fresh name "XXXXXXXX.MSG", so the library never sees a part
// of it. Temporary files left there by a writer that died are removed. The file's name, or
// nullopt with the reason.
std::optional<std::string> PlaceGatewayFile(const std::string &directory, std::string_view bytes,
                                            std::string &error);

// Reads a complete gateway message file. nullopt with the reason when it is held by its writer
// (`busy` set) or damaged. `workDirectory` receives the extracted blocks for a moment.
std::optional<GatewayMail> ReadGatewayFile(const std::string &path, const std::string &workDirectory,
                                           bool &busy, std::string &error);

}  // namespace tqv::tool
