// Jobs crossing to the host and back: storing a job the host returns, deleting the job file of a
// job the host has taken, and reporting, logging and cleaning up a finished job. Reports and logs
// fail silently; a finished job's documents are deleted whatever happened before.
#include <optional>

#include "common/file_extension.h"
#include "common/job_record.h"
#include "common/path_helpers.h"
#include "common/unique_name.h"
#include "config/routing_entries.h"
#include "config/service_state.h"
#include "config/user_properties.h"
#include "host/entry_points.h"
#include "host/job_documents.h"
#include "platform/file_system.h"
#include "reports/delivery_reports.h"
#include "reports/send_log.h"
#include "reports/text_job_files.h"

namespace tqv::host {

int FaxPending(void *jobBuffer) {
  if (jobBuffer == nullptr || CurrentService().pendingDirectory.empty()) return -1;
  const std::string path = MakeUniqueName(CurrentService().pendingDirectory, kJobFileExtension);
  // Everything but the job file's name is stored as the host left it. The host's record changes
  // only once the job file holds it: on a failure it is still the host's only copy.
  JobRecord stored = JobRecord::CopyOf(jobBuffer);
  stored.View().SetText(job::JobFile, path);
  if (!WriteJobFile(path, stored)) return -1;
  JobRecordView(jobBuffer).SetText(job::JobFile, path);
  return 0;
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
  // The report reads the message text and attaches the documents, so it comes before the clean-up.
  if (job.IsTextFileJob())
    WriteTextJobResult(job);
  else
    WriteDeliveryReport(job);
  // Faxes from the station just reached are routed to this sender from now on, also after a
  // failed attempt.
  const std::string sender = job.Text(job::SenderEmail);
  const std::string remoteId = job.Text(job::RemoteId);
  if (!sender.empty() && !remoteId.empty() &&
      HasProperty(GetUserProperties(sender), UserProperty::LearnCsidRoute))
    AddCsidRoute(sender, remoteId);
  AppendSendLog(job);
  DeleteJobDocuments(job);
  return 0;
}

int JfaxReady(void *jobBuffer) {
  if (jobBuffer == nullptr) return 0;
  const JobRecordView job(jobBuffer);
  // A JFAX job that the host refused goes back to its sender instead of to the JFAX service.
  if (job.Number(job::Status) != kStatusRefused)
    WriteJfaxMessage(job);
  else
    WriteDeliveryReport(job);
  DeleteJobDocuments(job);
  return 0;
}

}  // namespace tqv::host
