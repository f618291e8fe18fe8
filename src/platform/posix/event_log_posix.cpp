// The event log of the POSIX backend: syslog, or one line per event in the file that
// TQVSPOOL_EVENTLOG names. A failure loses the event and nothing else.
#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "platform/event_log.h"

namespace tqv::platform {

namespace {

int SyslogPriority(std::uint16_t type) {
  switch (type) {
    case kEventError:
      return LOG_ERR;
    case kEventWarning:
      return LOG_WARNING;
    default:
      return LOG_INFO;
  }
}

void AppendEventLine(const char *path, std::uint16_t type, std::string_view source,
                     std::string_view message) {
  std::string line = std::to_string(type);
  line += '\t';
  line += source;
  line += '\t';
  line += message;
  line += '\n';
  // One write on an O_APPEND descriptor, so lines of several processes never mix.
  const int fd = ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  if (fd < 0) return;
  [[maybe_unused]] const ssize_t written = ::write(fd, line.data(), line.size());
  ::close(fd);
}

}  // namespace

void ReportEventToLog(const void * /*module*/, std::string_view source, std::uint16_t type,
                      std::string_view message) {
  RecordEvent(type, source, message);
  // Sources need no registration here: syslog takes any identity.
  if (const char *file = std::getenv("TQVSPOOL_EVENTLOG"); file != nullptr && *file != '\0') {
    AppendEventLine(file, type, source, message);
    return;
  }
  const std::string identity(source);
  const std::string text(message);
  ::openlog(identity.c_str(), LOG_PID, LOG_USER);
  ::syslog(SyslogPriority(type), "%s", text.c_str());
  ::closelog();
}

}  // namespace tqv::platform
