// The files a job owns once the host has taken it: its message text and its documents, each the
// job's own copy in the pending directory. Failed deletions are not reported: nothing else
// refers to these copies.
#pragma once

#include <string_view>

#include "common/job_record.h"

namespace tqv::host {

// Deletes the file when the path is not empty and something exists there.
void DeleteIfPresent(std::string_view path);

// Deletes MessageTextFile and the first FileCount entries of Files (FileCount held to 0..16).
void DeleteJobDocuments(const JobRecordView &job);

}  // namespace tqv::host
