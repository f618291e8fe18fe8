// S_Scan: the throttled conversion passes, then one job from the pending queue. It never fails:
// unreadable jobs are skipped by the queue, and the work directory is emptied on every way out.
#include <cstdint>

#include "common/path_helpers.h"
#include "config/service_state.h"
#include "host/entry_points.h"
#include "outgoing/pending_queue.h"
#include "platform/clock.h"

namespace tqv::host {

namespace {

// The passes read whole directories; more often than this they would only cost time.
constexpr std::uint32_t kConversionInterval = 15001;

std::uint32_t &LastPassTick() {
  static std::uint32_t tick = 0;
  return tick;
}

void RunConversionPasses(const ServiceState &) {
  // The gateway-out, text-file and voicemail passes join here with their converters; a pass
  // without a converter would delete files it never converted.
}

}  // namespace

std::uint32_t LastConversionPassTick() {
  return LastPassTick();
}

void ResetScanLoopForTesting() {
  LastPassTick() = 0;
}

int Scan(std::int32_t dueJobsFlag, void *jobBuffer) {
  const ServiceState &service = CurrentService();
  // Before a successful start there are no directories to work in.
  if (jobBuffer == nullptr || service.pendingDirectory.empty() || service.workDirectory.empty()) return 0;

  std::uint32_t &last = LastPassTick();
  if (last == 0 || platform::TickCount() - last >= kConversionInterval) {
    RunConversionPasses(service);
    last = platform::TickCount();
  }

  const int result = SelectPendingJob(dueJobsFlag, service.pendingDirectory, jobBuffer) ? 1 : 0;

  DeleteAllFiles(service.workDirectory);
  return result;
}

}  // namespace tqv::host
