// Scan passes over the two input directories. The exclusive open is the whole test of whether a
// file is ready: the mail gateway holds its file without sharing until it is written. Only plain
// files are taken; anything else that others dropped there is left alone and noticed once.
#include "outgoing/scan_passes.h"

#include <optional>

#include "common/path_helpers.h"
#include "common/text_limits.h"
#include "diag/special_file_notice.h"
#include "platform/file.h"
#include "platform/file_system.h"

namespace tqv {

namespace {

// Converts every ready file that `pattern` matches; true in `remove` deletes each afterwards.
void RunPass(std::string_view directory, const char *pattern, const FileConverter &convert, bool remove) {
  std::string prefix(directory);
  CutText(prefix, kMaxPath);
  AppendBackslash(prefix);
  for (const platform::EntryInfo &entry : platform::FindEntries(prefix + pattern)) {
    // The gateway-out directory holds the library's own subdirectories: those pass in silence.
    if (entry.isDirectory) continue;
    std::string path = prefix + entry.name;
    CutText(path, kMaxPath);
    if (!entry.isRegularFile) {
      NoticeSpecialFile(path);
      continue;
    }
    if (!platform::File::OpenExclusive(path).has_value()) continue;
    convert(path);
    if (remove) platform::RemoveFile(path);
  }
}

}  // namespace

void RunGatewayOutPass(std::string_view gatewayOutDirectory, const FileConverter &convert) {
  RunPass(gatewayOutDirectory, "*.*", convert, true);
}

void RunTextFilePass(std::string_view textFileDirectory, const FileConverter &convert) {
  RunPass(textFileDirectory, "*.TXT", convert, false);
}

}  // namespace tqv
