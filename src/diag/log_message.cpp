// Writes log-file entries and event-log events. Every failure only shortens what is written: a
// log that cannot be opened loses the line but the event is still reported, and nothing throws.
#include "diag/log_message.h"

#include <cstdio>
#include <ctime>
#include <optional>
#include <string>

#include "common/path_helpers.h"
#include "common/text_limits.h"
#include "platform/clock.h"
#include "platform/event_log.h"
#include "platform/file.h"
#include "platform/file_system.h"
#include "platform/text_mode.h"
#include "platform/windows_directory.h"

namespace tqv {

namespace {

std::string FormatText(const char *format, std::va_list arguments) __attribute__((format(printf, 1, 0)));

std::string FormatText(const char *format, std::va_list arguments) {
  if (format == nullptr) return {};
  std::va_list measureArguments;
  va_copy(measureArguments, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, measureArguments);
  va_end(measureArguments);
  if (length <= 0) return {};
  std::string text(static_cast<std::size_t>(length) + 1, '\0');
  std::vsnprintf(text.data(), text.size(), format, arguments);
  text.resize(static_cast<std::size_t>(length));
  return text;
}

// Empty when there is no Windows directory, or when the full name would not fit a path buffer:
// a cut name would be some other file.
std::string LogFilePath() {
  std::string path = platform::WindowsDirectory();
  if (path.empty()) return {};
  AppendBackslash(path);
  path += kLogFileName;
  if (path.size() > kMaxPath) return {};
  return path;
}

// Size by an exclusive open: a log that another writer holds counts as 0 bytes, so it is appended
// to and never emptied under that writer.
std::int64_t LogFileSize(const std::string &path) {
  auto file = platform::File::OpenExclusive(path);
  if (!file) return 0;
  const auto size = file->Size();
  return size ? static_cast<std::int64_t>(*size) : 0;
}

void WriteLogLine(const std::string &message) {
  const std::string path = LogFilePath();
  if (path.empty()) return;

  const std::tm now = platform::LocalTime(platform::CurrentTime());
  char prefix[64];
  std::snprintf(prefix, sizeof prefix, "%02d/%02d/%04d  %02d:%02d:%02d  ", now.tm_mon + 1, now.tm_mday,
                now.tm_year + 1900, now.tm_hour, now.tm_min, now.tm_sec);

  std::optional<platform::File> file;
  if (LogFileSize(path) > kLogFileCap) {
    platform::RemoveFile(path);
    file = platform::File::Open(path, platform::FileAccess::Write, platform::FileSharing::ReadWrite,
                                platform::FileCreation::CreateAlways);
  } else {
    file = platform::File::OpenForAppend(path);
  }
  if (!file) return;
  file->Write(platform::ToTextMode(std::string(prefix) + message + "\n"));
}

}  // namespace

void LogMessageV(const void *module, const char *source, std::uint16_t type, const char *format,
                 std::va_list arguments) {
  // A logger that throws would turn a reported error into a crash; losing the entry is better.
  try {
    std::string message = FormatText(format, arguments);
    // Senders, subjects and file names come from outside: a line end among them would write log
    // lines and events of their own. A line end that closes the whole message is the format's.
    const std::size_t body = message.find_last_not_of("\r\n") + 1;
    for (std::size_t i = 0; i < body; ++i) {
      if (message[i] == '\r' || message[i] == '\n') message[i] = ' ';
    }
    WriteLogLine(message);
    platform::ReportEventToLog(module, source != nullptr ? source : "", type,
                               CutText(message, kMaxEventMessage));
  } catch (...) {
  }
}

void LogMessage(const void *module, const char *source, std::uint16_t type, const char *format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  LogMessageV(module, source, type, format, arguments);
  va_end(arguments);
}

}  // namespace tqv
