// Jobs crossing to the host and back: storing a job the host returns, deleting the job file of a
// job the host has taken, and removing the documents of a finished job. Failed deletions are not
// reported: the documents are the job's own copies and nothing else refers to them.
#include <optional>

#include "common/job_record.h"
#include "common/path_helpers.h"
#include "common/unique_name.h"
#include "config/routing_entries.h"
#include "config/service_state.h"
#include "config/user_properties.h"
#include "host/entry_points.h"
#include "platform/file_system.h"

namespace tqv::host {

namespace {

void DeleteIfPresent(const std::string &path) {
  if (!path.empty() && FileExists(path)) platform::RemoveFile(path);
}

// The job's message text and its documents, each its own copy in the pending directory.
void DeleteJobDocuments(const JobRecordView &job) {
  DeleteIfPresent(job.Text(job::MessageTextFile));
  for (int i = 0; i < job.UsableFileCount(); ++i)
    DeleteIfPresent(job.Text(job::File(i)));
}

}  // namespace

int FaxPending(void *jobBuffer) {
  if (jobBuffer == nullptr || CurrentService().pendingDirectory.empty()) return -1;
  const std::string path = MakeUniqueName(CurrentService().pendingDirectory, "TQV");
  JobRecordView job(jobBuffer);
  // Everything but the job file's name is stored as the host left it.
  job.SetText(job::JobFile, path);
  return WriteJobFile(path, JobRecord::CopyOf(jobBuffer)) ? 0 : -1;
}

int ScannedEventAccepted(void *jobBuffer) {
  if (jobBuffer == nullptr) return 0;
  const std::string path = JobRecordView(jobBuffer).Text(job::JobFile);
  if (path.empty() || !FileExists(path)) return 0;
  return platform::RemoveFile(path) ? 1 : 0;
}

int FaxSent(void *jobBuffer) {
  if (jobBuffer == nullptr) return 0;
  const JobRecordView job(jobBuffer);
  // Faxes from the station just reached are routed to this sender from now on, also after a
  // failed attempt.
  const std::string sender = job.Text(job::SenderEmail);
  const std::string remoteId = job.Text(job::RemoteId);
  if (!sender.empty() && !remoteId.empty() &&
      HasProperty(GetUserProperties(sender), UserProperty::LearnCsidRoute))
    AddCsidRoute(sender, remoteId);
  DeleteJobDocuments(job);
  return 0;
}

int JfaxReady(void *jobBuffer) {
  if (jobBuffer == nullptr) return 0;
  // The documents stay until they have been mailed to the JFAX service: deleting them first
  // would lose the fax.
  return 0;
}

}  // namespace tqv::host
