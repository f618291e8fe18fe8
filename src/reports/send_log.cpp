// The send log line and the archive copies of a delivered fax's documents.
#include "reports/send_log.h"

#include <string>

#include "common/path_helpers.h"
#include "diag/log_message.h"
#include "platform/event_log.h"
#include "reports/archive_copy.h"
#include "reports/log_file.h"
#include "reports/report_layout.h"

namespace tqv {

namespace {

constexpr std::string_view kSuccess = "SUCCESS";
constexpr std::string_view kFailure = "FAILURE";

// The archive names of the documents, separated by commas; empty when nothing was archived.
std::string ArchiveDocuments(const JobRecordView &job) {
  if (job.Number(job::ArchiveSent) == 0 || job.Number(job::Status) != kStatusDelivered) return {};
  const std::string directory = job.Text(job::ArchiveDir);
  if (!DirectoryExists(directory)) {
    LogMessage(nullptr, kServiceEventSource, platform::kEventError,
               "Archive-directory '%s' for sent faxes does not exist", directory.c_str());
    return {};
  }
  std::string names;
  for (int i = 0; i < job.UsableFileCount(); ++i) {
    if (i > 0) names += ',';
    names += MakeArchiveCopy(directory, job.Text(job::File(i)));
  }
  return names;
}

}  // namespace

void AppendSendLog(const JobRecordView &job) {
  std::optional<platform::File> log = OpenLogFile(kSendLogName, kSendLogHeader);
  if (!log) return;
  std::string line = LogLineStart();
  AppendLogColumn(line, job.Text(job::SenderEmail));
  AppendLogColumn(line, job.Text(job::SenderName));
  AppendLogColumn(line, job.Text(job::BillingCode));
  AppendLogColumn(line, job.Text(job::RemoteId));
  AppendLogColumn(line, job.Text(job::Party(job::RecipientParty, PartyField::LastName)));
  AppendLogColumn(line, job.Text(job::Party(job::RecipientParty, PartyField::Company)));
  AppendLogColumn(line, job.Text(job::RecipientNumber));
  AppendLogColumn(line, DurationText(job.Number(job::CallDuration)));
  AppendLogColumn(line, std::to_string(static_cast<std::int32_t>(job.Number(job::PagesTransferred))));
  AppendLogColumn(line, job.Number(job::Status) == kStatusDelivered ? kSuccess : kFailure);
  AppendLogColumn(line, job.Text(job::StatusInfo));
  AppendLogColumn(line, job.Text(job::Port));
  AppendLogColumn(line, ArchiveDocuments(job));
  WriteLogLine(*log, line);
}

}  // namespace tqv
