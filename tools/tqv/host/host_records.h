// The record fields the simulated fax service reads and writes. They come from the one field table
// of the library, which is itself built from the public header's offsets, so the simulator knows no
// more than a fax service written elsewhere would.
#pragma once

#include <algorithm>

#include "common/job_record.h"
#include "common/receive_record.h"

namespace tqv::tool {

namespace host_job {

using namespace ::tqv::job;

// The number of documents, held to the table's 16 entries.
inline int DocumentCount(const unsigned char *job) {
  return std::clamp(ReadNumber(job, FileCount), 0, TQV_JOB_MAX_FILES);
}

}  // namespace host_job

namespace host_receive = ::tqv::receive;

}  // namespace tqv::tool
