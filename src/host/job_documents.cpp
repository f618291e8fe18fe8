// Deleting the documents of a finished or refused job.
#include "host/job_documents.h"

#include "common/path_helpers.h"
#include "platform/file_system.h"
#include "platform/wildcard_match.h"

namespace tqv::host {

// Removing a missing file fails quietly, so a plain name needs no look first; a pattern goes only
// when something matches it.
void DeleteIfPresent(std::string_view path) {
  if (path.empty() || (platform::HasWildcards(path) && !FileExists(path))) return;
  platform::RemoveFile(path);
}

void DeleteJobDocuments(const JobRecordView &job) {
  DeleteIfPresent(job.Text(job::MessageTextFile));
  for (int i = 0; i < job.UsableFileCount(); ++i)
    DeleteIfPresent(job.Text(job::File(i)));
}

}  // namespace tqv::host
