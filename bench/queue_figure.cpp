// The pending queue: S_Scan opens and reads every job file in full on every call, so one call over
// a long queue costs at least a read of the whole queue.
#include <ctime>
#include <string>
#include <vector>

#include "bench_checks.h"
#include "common/job_record.h"
#include "figure.h"
#include "library_run.h"

namespace tqv::bench {

namespace {

constexpr int kJobs = 10000;

// The host hands back kJobs jobs for tomorrow (S_FaxPending), then calls S_Scan once: no job is
// due, so none is returned and every file is read.
double ScanQueue(const tool::EntryPoints &library) {
  JobRecord job = JobRecord::WithTag(kFaxJobTag);
  JobRecordView view = job.View();
  view.SetNumber(job::ScheduledTime, static_cast<std::int32_t>(std::time(nullptr) + 24 * 60 * 60));
  view.SetText(job::SenderEmail, kSender);
  for (int i = 0; i < kJobs; ++i) {
    view.SetText(job::FaxNumber, "0711 555 " + std::to_string(i));
    Check(library.faxPending(view.Bytes()) == 0, "S_FaxPending failed");
  }
  JobRecord output;
  int taken = -1;
  const double seconds = TimeOf([&] { taken = library.scan(1, output.View().Bytes()); });
  Check(taken == 0, "S_Scan returned a job scheduled for tomorrow");
  return seconds;
}

Round ScanPendingJobs(const RoundContext &context) {
  const Sandbox sandbox(context.scratch);
  Round round;
  round.ours = TimeInLibrary(context.library, sandbox, ScanQueue);
  const std::vector<fs::path> jobs = FilesIn(sandbox.Pending(), ".TQV");
  Check(jobs.size() == kJobs,
        std::to_string(jobs.size()) + " job files after the scan, " + std::to_string(kJobs) + " expected");
  for (const fs::path &path : jobs)
    Check(fs::file_size(path) == kJobRecordSize, path.string() + " is not one job record");
  std::vector<std::string> command = {"cat"};
  for (const fs::path &path : jobs)
    command.push_back(path.string());
  round.baseline = TimeProgram(command);
  return round;
}

}  // namespace

std::vector<Figure> QueueFigures() {
  return {{"P3", "one S_Scan over 10 000 job files scheduled tomorrow (due-jobs flag 1)",
           "cat of all job files to /dev/null", 1.2, ScanPendingJobs}};
}

}  // namespace tqv::bench
