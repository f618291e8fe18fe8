// The receive log line and the archive copy of a received fax.
#include "reports/receive_log.h"

#include <optional>
#include <string>

#include "common/path_helpers.h"
#include "diag/log_message.h"
#include "platform/event_log.h"
#include "platform/file_system.h"
#include "reports/archive_copy.h"
#include "reports/log_file.h"
#include "reports/report_layout.h"

namespace tqv {

namespace {

constexpr std::string_view kSuccess = "SUCCESS";
constexpr std::string_view kFailure = "FAILURE";
constexpr std::string_view kTextCopyExtension = ".TXT";

// The archive name of the fax, or empty. Its recognised text goes beside it as .TXT, unlogged.
std::string ArchiveFax(const ReceiveRecordView &receive) {
  if (receive.Number(receive::ArchiveReceived) == 0) return {};
  const std::string directory = receive.Text(receive::ArchiveDir);
  if (!DirectoryExists(directory)) {
    LogMessage(nullptr, kServiceEventSource, platform::kEventError,
               "Archive-directory '%s' for incoming faxes does not exist\n", directory.c_str());
    return {};
  }
  const std::string faxFile = receive.Text(receive::FaxFile);
  if (faxFile.empty() || !FileExists(faxFile)) return {};
  const std::string name = MakeArchiveCopy(directory, faxFile);
  const std::string textFile = receive.Text(receive::OcrTextFile);
  if (!textFile.empty() && FileExists(textFile)) {
    const std::string textName = name.substr(0, name.rfind('.')) + std::string(kTextCopyExtension);
    platform::CopyFileTo(textFile, textName, /*failIfExists=*/true);
  }
  return name;
}

std::string RoutedNames(RecipientList &routedTo) {
  std::string names;
  bool first = true;
  for (std::optional<std::string> name = routedTo.First(); name; name = routedTo.Next()) {
    if (!first) names += ',';
    names += *name;
    first = false;
  }
  return names;
}

}  // namespace

void AppendReceiveLog(const ReceiveRecordView &receive, RecipientList &routedTo) {
  std::optional<platform::File> log = OpenLogFile(kReceiveLogName, kReceiveLogHeader);
  if (!log) return;
  std::string line = LogLineStart();
  AppendLogColumn(line, receive.Text(receive::RemoteId));
  AppendLogColumn(line, DurationText(receive.Number(receive::CallDuration)));
  AppendLogColumn(line, std::to_string(static_cast<std::int32_t>(receive.Number(receive::PagesReceived))));
  AppendLogColumn(line, receive.Number(receive::Result) == kResultReceived ? kSuccess : kFailure);
  AppendLogColumn(line, receive.Text(receive::Info));
  AppendLogColumn(line, receive.Text(receive::Port));
  AppendLogColumn(line, ArchiveFax(receive));
  AppendLogColumn(line, RoutedNames(routedTo));
  WriteLogLine(*log, line);
}

}  // namespace tqv
