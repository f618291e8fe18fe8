// Queue selection over the job files. Every call reads every job file in full: the directory is
// the queue, and there is no index to go stale when another process adds or removes a job.
#include "outgoing/pending_queue.h"

#include <algorithm>
#include <string>

#include "common/file_extension.h"
#include "common/path_helpers.h"
#include "common/text_limits.h"
#include "config/settings_files.h"
#include "diag/file_notices.h"
#include "diag/log_message.h"
#include "diag/special_file_notice.h"
#include "platform/clock.h"
#include "platform/event_log.h"
#include "platform/file_system.h"

namespace tqv {

namespace {

// At most one scheduling notice per minute, for whichever waiting job comes first after it.
constexpr std::uint32_t kNoticeInterval = 60000;

std::uint32_t &LastNoticeTick() {
  static std::uint32_t tick = 0;
  return tick;
}

bool HasCoverExtension(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  if (dot == std::string_view::npos) return false;
  const std::string_view extension = path.substr(dot);
  if (extension.size() != 4) return false;
  const char *cvf = ".CVF";
  for (std::size_t i = 0; i < 4; ++i) {
    const char c = extension[i];
    if ((c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c) != cvf[i]) return false;
  }
  return true;
}

char FoldedPathCharacter(char c) {
  if (c == '/') return '\\';
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

void GiveSchedulingNotice(std::int64_t secondsRemaining) {
  const std::uint32_t now = platform::TickCount();
  std::uint32_t &last = LastNoticeTick();
  if (last != 0 && now - last < kNoticeInterval) return;
  if (GetDebugScheduling()) {
    LogMessage(nullptr, kServiceEventSource, platform::kEventInformation,
               "Scheduled event: %ld seconds remaining", static_cast<long>(secondsRemaining));
  }
  last = now;
}

}  // namespace

bool IsEarlyJob(const JobRecordView &job) {
  if (!job.Text(job::CoverPageFile).empty() || !job.Text(job::TemplateFile).empty()) return true;
  for (int i = 0; i < job.UsableFileCount(); ++i) {
    if (HasCoverExtension(job.Text(job::File(i)))) return true;
  }
  return false;
}

bool NamesJobFile(std::string_view jobFile, std::string_view path) {
  return jobFile.size() == path.size() &&
         std::equal(jobFile.begin(), jobFile.end(), path.begin(),
                    [](char a, char b) { return FoldedPathCharacter(a) == FoldedPathCharacter(b); });
}

bool SelectPendingJob(std::int32_t dueJobsFlag, std::string_view pendingDirectory, void *output) {
  bool skipQueueTaken = false;
  bool dueTaken = false;
  bool earlyTaken = false;

  std::string directory(pendingDirectory);
  CutText(directory, kMaxPath);
  AppendBackslash(directory);
  for (const platform::EntryInfo &entry :
       platform::FindEntries(directory + "*." + std::string(kJobFileExtension))) {
    if (entry.isDirectory) continue;
    std::string path = directory + entry.name;
    CutText(path, kMaxPath);
    if (!entry.isRegularFile) {
      NoticeSpecialFile(path);
      continue;
    }
    std::optional<JobRecord> record = ReadJobFile(path);
    if (!record) continue;
    const JobRecordView job = record->View();
    if (!job.HasValidHeader()) continue;
    if (!NamesJobFile(job.Text(job::JobFile), path)) {
      // Its text is not logged: the record is damaged or forged, the path is ours.
      if (FirstNoticeOf(path)) {
        LogMessage(
            nullptr, kServiceEventSource, platform::kEventError,
            "Job file '%s' names another file as its own; it is not handed out and stays in the pending "
            "directory",
            path.c_str());
      }
      continue;
    }

    const std::int64_t now = platform::CurrentTime();
    if (job.Number(job::SkipQueue) != 0) {
      record->CopyTo(output);
      skipQueueTaken = true;
      break;
    }
    if (!dueTaken && IsEarlyJob(job)) {
      record->CopyTo(output);
      earlyTaken = true;
      continue;
    }
    const std::int32_t scheduled = job.Number(job::ScheduledTime);
    if (now < scheduled) {
      GiveSchedulingNotice(scheduled - now);
      continue;
    }
    if (dueJobsFlag != 0) {
      record->CopyTo(output);
      dueTaken = true;
    }
  }
  return skipQueueTaken || dueTaken || earlyTaken;
}

void ResetPendingQueueForTesting() {
  LastNoticeTick() = 0;
}

}  // namespace tqv
