// Job records and job files. Reading takes exactly one record's bytes from a file opened without
// sharing; a failed write removes what it began, so a job file is either whole or absent.
#include "common/job_record.h"

#include <algorithm>
#include <cstring>

#include "platform/file.h"
#include "platform/file_system.h"

namespace tqv {

bool JobRecordView::HasValidHeader() const {
  const std::string_view tag = Raw(job::Tag);
  return (tag == kFaxJobTag || tag == kJfaxJobTag) && Number(job::RecordSize) == kJobRecordSize;
}

int JobRecordView::UsableFileCount() const {
  return std::clamp(Number(job::FileCount), 0, kMaxJobFiles);
}

JobRecord JobRecord::WithTag(std::string_view tag) {
  JobRecord record;
  JobRecordView view = record.View();
  view.SetRaw(job::Tag, tag);
  view.SetNumber(job::RecordSize, static_cast<std::uint32_t>(kJobRecordSize));
  return record;
}

JobRecord JobRecord::CopyOf(const void *bytes) {
  JobRecord record;
  std::memcpy(record.bytes_.data(), bytes, kJobRecordSize);
  return record;
}

void JobRecord::CopyTo(void *bytes) const {
  std::memcpy(bytes, bytes_.data(), kJobRecordSize);
}

std::optional<JobRecord> ReadJobFile(std::string_view path) {
  std::optional<platform::File> file = platform::File::OpenExclusive(path);
  if (!file) return std::nullopt;
  JobRecord record;
  unsigned char *target = record.View().Bytes();
  std::size_t got = 0;
  // A read may return less than asked for; only a record read whole counts.
  while (got < kJobRecordSize) {
    const std::optional<std::size_t> n = file->Read(target + got, kJobRecordSize - got);
    if (!n || *n == 0) return std::nullopt;
    got += *n;
  }
  return record;
}

bool WriteJobFile(std::string_view path, const JobRecord &record) {
  std::optional<platform::File> file = platform::File::CreateExclusive(path);
  if (!file) return false;
  if (file->Write(record.Bytes())) return true;
  file.reset();
  platform::RemoveFile(path);
  return false;
}

}  // namespace tqv
