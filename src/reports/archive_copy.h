// Archive copies of fax files, asked for by the fax service in its records: copies under fresh
// clock-made names in the archive directory, never replacing a file there.
#pragma once

#include <string>
#include <string_view>

namespace tqv {

// Copies the file to <archive directory>\XXXXXXXX.FAX and returns that name; the name is returned
// also when the copy failed, as the log shows it either way.
std::string MakeArchiveCopy(std::string_view archiveDirectory, std::string_view source);

}  // namespace tqv
