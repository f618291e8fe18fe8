// Notices about one file that would repeat on every scan (a special file in an input directory, a
// damaged job file): each is given once per file for the life of the library, not once per pass.
#pragma once

#include <string_view>

namespace tqv {

// True the first time `path` (compared without regard to case) is asked about, false afterwards.
// The memory is bounded: when it is full it starts again, so a very long run may repeat a notice.
bool FirstNoticeOf(std::string_view path);

void ResetFileNoticesForTesting();

}  // namespace tqv
