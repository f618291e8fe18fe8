// S_Scan: the throttled conversion passes, then one job from the pending queue. It never fails:
// unreadable jobs are skipped by the queue, jobs to numbers their sender has blocked are reported
// and removed, and the work directory is emptied on every way out.
#include <cstdint>
#include <set>
#include <string>

#include "common/job_record.h"
#include "common/path_helpers.h"
#include "config/blocked_numbers.h"
#include "config/message_strings.h"
#include "config/service_state.h"
#include "diag/log_message.h"
#include "host/entry_points.h"
#include "host/job_documents.h"
#include "incoming/voicemail_delivery.h"
#include "outgoing/message_conversion.h"
#include "outgoing/pending_queue.h"
#include "outgoing/scan_passes.h"
#include "outgoing/text_file_conversion.h"
#include "platform/clock.h"
#include "platform/event_log.h"
#include "reports/delivery_reports.h"

namespace tqv::host {

namespace {

// The passes read whole directories; more often than this they would only cost time.
constexpr std::uint32_t kConversionInterval = 15001;

std::uint32_t &LastPassTick() {
  static std::uint32_t tick = 0;
  return tick;
}

// The result text of a refused job, and the room it is looked up with.
constexpr int kBlockedNumberText = 422;
constexpr std::size_t kStatusInfoRoom = 255;

// Tells the sender why the job was not sent and removes it with its documents.
void RefuseBlockedJob(JobRecordView job) {
  job.SetNumber(job::Status, kStatusRefused);
  job.SetText(job::StatusInfo, LookupString(kBlockedNumberText, kStatusInfoRoom));
  WriteDeliveryReport(job);
  DeleteJobDocuments(job);
  DeleteIfPresent(job.Text(job::JobFile));
}

void RunConversionPasses(const ServiceState &service) {
  RunGatewayOutPass(service.gatewayOutDirectory, [](const std::string &path) { ConvertMessage(path); });
  if (service.textFileFlag != 0)
    RunTextFilePass(service.textFileDirectory, [](const std::string &path) { ConvertTextFile(path); });
  ScanVoicemail();
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

  // A job file that cannot be deleted would come back at once; one refusal per job file and call
  // keeps the loop finite.
  std::set<std::string> refused;
  int result = 0;
  while (SelectPendingJob(dueJobsFlag, service.pendingDirectory, jobBuffer)) {
    JobRecordView job(jobBuffer);
    if (!IsNumberBlocked(job.Text(job::SenderEmail), job.Text(job::FaxNumber))) {
      result = 1;
      break;
    }
    if (!refused.insert(job.Text(job::JobFile)).second) {
      LogMessage(nullptr, kServiceEventSource, platform::kEventError,
                 "Refused job '%s' could not be removed from the pending directory",
                 job.Text(job::JobFile).c_str());
      break;
    }
    RefuseBlockedJob(job);
  }

  DeleteAllFiles(service.workDirectory);
  return result;
}

}  // namespace tqv::host
