// Archive copies: a name from the clock, and a copy that fails rather than replace a file.
#include "reports/archive_copy.h"

#include "common/unique_name.h"
#include "platform/file_system.h"

namespace tqv {

namespace {
constexpr std::string_view kArchiveExtension = "FAX";
}  // namespace

std::string MakeArchiveCopy(std::string_view archiveDirectory, std::string_view source) {
  std::string name = MakeUniqueName(archiveDirectory, kArchiveExtension);
  platform::CopyFileTo(source, name, /*failIfExists=*/true);
  return name;
}

}  // namespace tqv
