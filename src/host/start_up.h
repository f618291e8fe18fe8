// Start-up of the library: the settings are read, the directories checked and created. Every
// failure is logged once, where it is found.
#pragma once

#include <string>
#include <string_view>

namespace tqv::host {

// The directory for received faxes: the gateway-in path cut just after its last separator, then
// "TEMP" (C:\GW\IN gives C:\GW\TEMP, C:\GW\IN\ gives C:\GW\IN\TEMP).
std::string TempInDirectory(std::string_view gatewayInDirectory);

}  // namespace tqv::host
