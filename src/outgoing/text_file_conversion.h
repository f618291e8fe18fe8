// Turns one plain text file of the text-file directory into fax jobs, one per recipient line, and
// removes the source. A file that cannot be faxed is answered with an error file beside it.
#pragma once

#include <string_view>

namespace tqv {

// Converts the text file at `path` and removes it.
void ConvertTextFile(std::string_view path);

}  // namespace tqv
