// The passes that pick up outgoing work: every message file of the gateway-out directory and,
// when enabled, every "*.TXT" of the text-file directory is handed to its converter. A file that
// another process still holds is left for a later pass.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tqv {

// Converts one file, given by its full path; the file is closed when it is called.
using FileConverter = std::function<void(const std::string &path)>;

// Each file of the directory that opens exclusively is converted and then deleted, whatever
// the conversion made of it. Directories never open as files, so they are passed over.
void RunGatewayOutPass(std::string_view gatewayOutDirectory, const FileConverter &convert);

// Each "*.TXT" that opens exclusively is converted; removing it is the converter's task.
void RunTextFilePass(std::string_view textFileDirectory, const FileConverter &convert);

}  // namespace tqv
