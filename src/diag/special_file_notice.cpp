// Logs a skipped special file once; see special_file_notice.h. Logging never fails the caller.
#include "diag/special_file_notice.h"

#include <string>

#include "diag/file_notices.h"
#include "diag/log_message.h"
#include "platform/event_log.h"

namespace tqv {

void NoticeSpecialFile(std::string_view path) {
  if (!FirstNoticeOf(path)) return;
  const std::string name(path);
  LogMessage(nullptr, kServiceEventSource, platform::kEventWarning,
             "'%s' is not a plain file (a link, pipe or device); it is left alone", name.c_str());
}

}  // namespace tqv
