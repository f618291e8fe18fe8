// The record fields the simulated fax service reads and writes, built only from the public
// header's offsets, as a fax service written elsewhere would know them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "common/record_fields.h"
#include "tqvspool.h"

namespace tqv::tool {

namespace host_job {

inline constexpr RawField Tag{TQV_JOB_TAG, 9};
inline constexpr SignedField ScheduledTime{TQV_JOB_SCHEDULED_TIME};
inline constexpr UnsignedField SkipQueue{TQV_JOB_SKIP_QUEUE};
inline constexpr TextField JobFile{TQV_JOB_JOB_FILE, TQV_PATH_FIELD_SIZE};
inline constexpr TextField FaxNumber{TQV_JOB_FAX_NUMBER, 96};
inline constexpr TextField RemoteId{TQV_JOB_REMOTE_ID, 96};
inline constexpr UnsignedField Status{TQV_JOB_STATUS};
inline constexpr TextField StatusInfo{TQV_JOB_STATUS_INFO, 256};
inline constexpr UnsignedField TotalPages{TQV_JOB_TOTAL_PAGES};
inline constexpr SignedField SpeedCode{TQV_JOB_SPEED_CODE};
inline constexpr UnsignedField NumRetries{TQV_JOB_NUM_RETRIES};
inline constexpr SignedField CallDuration{TQV_JOB_CALL_DURATION};
inline constexpr UnsignedField PagesTransferred{TQV_JOB_PAGES_TRANSFERRED};
inline constexpr TextField Port{TQV_JOB_PORT, 52};
inline constexpr SignedField FileCount{TQV_JOB_FILE_COUNT};

// The number of documents, held to the table's 16 entries.
inline int DocumentCount(const unsigned char *job) {
  return std::clamp(ReadNumber(job, FileCount), 0, TQV_JOB_MAX_FILES);
}

}  // namespace host_job

namespace host_receive {

inline constexpr TextField RemoteId{TQV_RECEIVE_REMOTE_ID, 96};
inline constexpr UnsignedField Result{TQV_RECEIVE_RESULT};
inline constexpr TextField Info{TQV_RECEIVE_INFO, 256};
inline constexpr SignedField SpeedCode{TQV_RECEIVE_SPEED_CODE};
inline constexpr SignedField CallDuration{TQV_RECEIVE_CALL_DURATION};
inline constexpr UnsignedField PagesReceived{TQV_RECEIVE_PAGES_RECEIVED};
inline constexpr TextField Port{TQV_RECEIVE_PORT, 52};
inline constexpr TextField DtmfDigits{TQV_RECEIVE_DTMF_DIGITS, 24};
inline constexpr UnsignedField OcrAvailable{TQV_RECEIVE_OCR_AVAILABLE};
inline constexpr TextField FaxFile{TQV_RECEIVE_FAX_FILE, TQV_PATH_FIELD_SIZE};
inline constexpr TextField OcrTextFile{TQV_RECEIVE_OCR_TEXT_FILE, TQV_PATH_FIELD_SIZE};

}  // namespace host_receive

}  // namespace tqv::tool
