// Result fields of a loopback call. Pure record work; it cannot fail.
#include "tqv/host/loopback_line.h"

#include <algorithm>

#include "tqv/host/host_records.h"

namespace tqv::tool {

void FillLoopbackResult(unsigned char *job, bool failed) {
  const auto pages = static_cast<std::uint32_t>(std::max(host_job::DocumentCount(job), 1));
  WriteText(job, host_job::RemoteId, kLoopbackRemoteId);
  WriteText(job, host_job::Port, kLoopbackPort);
  WriteNumber(job, host_job::TotalPages, pages);
  WriteNumber(job, host_job::PagesTransferred, failed ? 0 : pages);
  WriteNumber(job, host_job::SpeedCode, kSpeed14400);
  WriteNumber(job, host_job::CallDuration, static_cast<std::int32_t>(pages) * kSecondsPerPage);
  WriteNumber(job, host_job::NumRetries, std::uint32_t{0});
  WriteNumber(job, host_job::Status, failed ? kStatusFailed : kStatusDelivered);
  WriteText(job, host_job::StatusInfo, failed ? kFailureText : std::string_view());
}

}  // namespace tqv::tool
