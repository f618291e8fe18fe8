// Deleting the documents of a finished or refused job.
#include "host/job_documents.h"

#include "common/path_helpers.h"
#include "platform/file_system.h"

namespace tqv::host {

void DeleteIfPresent(std::string_view path) {
  if (!path.empty() && FileExists(path)) platform::RemoveFile(path);
}

void DeleteJobDocuments(const JobRecordView &job) {
  DeleteIfPresent(job.Text(job::MessageTextFile));
  for (int i = 0; i < job.UsableFileCount(); ++i)
    DeleteIfPresent(job.Text(job::File(i)));
}

}  // namespace tqv::host
