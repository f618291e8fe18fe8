// A gateway message as the mail gateway drops it into the gateway-out directory, built from its
// parts so a test names only what it is about. Lengths are counted, so a block is never cut.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tqv::testing {

struct GatewayMessage {
  std::string sender = "ann@example.com";
  std::vector<std::string> recipients = {"089 123 456@fax"};
  std::string subject = "Order";
  // Every member has a default, so a test can name only the parts it sets.
  std::string body{};                                              // no body block when empty
  std::vector<std::pair<std::string, std::string>> attachments{};  // name and bytes
  std::string fileType{};
  std::string customString{};  // no line when empty

  std::string Bytes() const {
    std::string bytes = "File Type:" + fileType + "\r\nMAIL FROM:" + sender + "\r\n";
    for (const std::string &recipient : recipients)
      bytes += "RCPT TO:" + recipient + "\r\n";
    bytes += "Subject:" + subject + "\r\n";
    if (!customString.empty()) bytes += "Custom-String:" + customString + "\r\n";
    if (!body.empty())
      bytes += "----beginbody:" + std::to_string(body.size()) + "\r\n" + body + "\r\n----endbody\r\n";
    for (const auto &[name, data] : attachments)
      bytes += "----beginattach:" + name + ":" + std::to_string(data.size()) + "\r\n" + data +
               "\r\n----endattach\r\n";
    return bytes;
  }
};

}  // namespace tqv::testing
