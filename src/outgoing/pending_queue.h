// The pending queue: the job files of the pending directory and the choice of the one to hand to
// the host. Files that cannot be read whole, carry a wrong tag or size, or do not name themselves
// are skipped, never changed or deleted.
#pragma once

#include <cstdint>
#include <string_view>

#include "common/job_record.h"

namespace tqv {

// A job that goes to the host without regard to its schedule: it has a cover page or a template,
// or one of its documents ends in ".CVF".
bool IsEarlyJob(const JobRecordView &job);

// True when `jobFile` (a record's JobFile) names the file at `path`, the way the library writes it:
// the same characters, with "\" and "/" taken as one separator and letters compared without
// regard to case, as Windows compares names. A record copied from elsewhere names another file.
bool NamesJobFile(std::string_view jobFile, std::string_view path);

// Reads every "*.TQV" of the pending directory and copies the chosen record into `output`
// (kJobRecordSize bytes): a skip-queue job at once; else the last due job when dueJobsFlag is
// nonzero; else the last early job met before any due job. True when a record was copied.
// A job file whose JobFile does not name it is never chosen, with one error event per file:
// accepting it would delete the file it names instead.
bool SelectPendingJob(std::int32_t dueJobsFlag, std::string_view pendingDirectory, void *output);

// Forgets when the last scheduling notice was given.
void ResetPendingQueueForTesting();

}  // namespace tqv
