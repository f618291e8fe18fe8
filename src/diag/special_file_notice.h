// The warning that an input pass left an entry alone because it is not a plain file (a link, FIFO,
// device or socket): anyone may drop one into a shared directory, and opening it could block the
// scan or reach a file elsewhere. Given once per entry, not on every pass; it cannot fail.
#pragma once

#include <string_view>

namespace tqv {

void NoticeSpecialFile(std::string_view path);

}  // namespace tqv
