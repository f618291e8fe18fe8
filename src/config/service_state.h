// What start-up works out for the running service: the directories, the text-file switch and the
// dial settings. Process-wide, set by start-up and read by every road; the host calls one entry
// point at a time, so nothing here is locked.
#pragma once

#include <cstdint>
#include <string>

namespace tqv {

struct ServiceState {
  std::int32_t textFileFlag = 0;
  std::string textFileDirectory;
  std::string productDirectory;  // also the log directory
  std::string gatewayInDirectory;
  std::string gatewayOutDirectory;
  std::string pendingDirectory;  // gateway-out\PENDING
  std::string workDirectory;     // product\TEMP\TQVSPOOL
  std::string coverDirectory;
  std::string voicemailDirectory;
  std::string attachmentDirectory;  // product\ATTACH
  std::string tempInDirectory;      // beside the gateway-in directory
  std::string internationalPrefix;
  std::string countryCode;
  std::string areaCode;
};

ServiceState &CurrentService();
void ResetServiceStateForTesting();

}  // namespace tqv
