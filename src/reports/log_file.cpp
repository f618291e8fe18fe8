// The log files: header on creation, quoted columns, lines written in text mode. Write errors
// are not checked: a log line is a record, not part of the fax's road.
#include "reports/log_file.h"

#include <ctime>

#include "common/path_helpers.h"
#include "common/text_limits.h"
#include "config/service_state.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/text_mode.h"
#include "reports/log_formats.h"

namespace tqv {

std::optional<platform::File> OpenLogFile(std::string_view fileName, std::string_view headerLine) {
  std::string path = CurrentService().productDirectory;
  if (path.empty()) return std::nullopt;
  CutText(path, kMaxPath);
  AppendBackslash(path);
  path += fileName;
  std::optional<platform::File> log = platform::File::OpenForAppend(path);
  if (log && log->Created() && !log->Write(platform::ToTextMode(std::string(headerLine) + "\n\n"))) {
    // Every later line would land in a log without its header: the log counts as not opened.
    log.reset();
    platform::RemoveFile(path);
    return std::nullopt;
  }
  return log;
}

std::string LogLineStart() {
  const std::tm now = platform::LocalTime(platform::CurrentTime());
  std::string line = "\"" + FormatLogDate(now).value_or("") + "\"";
  AppendLogColumn(line, FormatLogTime(now));
  return line;
}

void AppendLogColumn(std::string &line, std::string_view value) {
  line += ",\"";
  // A station identifier or status text with a line end would write log lines of its own.
  for (const char c : value)
    line += (c == '\r' || c == '\n') ? ' ' : c;
  line += '"';
}

void WriteLogLine(platform::File &log, std::string_view line) {
  log.Write(platform::ToTextMode(std::string(line) + "\n"));
}

}  // namespace tqv
