// Delivery reports: every S_FaxSent mails a report to the sender (a new gateway message, numbered
// by the message counter), appends a line to the send log and deletes the job's documents.
#include <map>
#include <string>
#include <vector>

#include "bench_checks.h"
#include "common/job_record.h"
#include "figure.h"
#include "library_run.h"

namespace tqv::bench {

namespace {

constexpr int kReports = 1000;

// The finished jobs as the host holds them: each stored (S_FaxPending), taken over
// (S_ScannedEventAccepted) and sent, with one document.
std::vector<JobRecord> FinishedJobs(const tool::EntryPoints &library, const fs::path &documents) {
  std::vector<JobRecord> jobs(kReports);
  for (int i = 0; i < kReports; ++i) {
    jobs[i] = JobRecord::WithTag(kFaxJobTag);
    JobRecordView job = jobs[i].View();
    job.SetText(job::SenderEmail, kSender);
    job.SetText(job::SenderName, "Bench");
    job.SetText(job::Subject, "Report " + std::to_string(i));
    job.SetText(job::RecipientName, "Recipient " + std::to_string(i));
    job.SetText(job::FaxNumber, "0711 555 " + std::to_string(i));
    const fs::path document = documents / ("doc" + std::to_string(i) + ".pdf");
    WriteBytes(document, RandomBytes(4096, static_cast<unsigned>(i)));
    job.SetNumber(job::FileCount, 1);
    job.SetText(job::File(0), document.string());
    Check(library.faxPending(job.Bytes()) == 0, "S_FaxPending failed");
    Check(library.scannedEventAccepted(job.Bytes()) != 0, "S_ScannedEventAccepted kept the job file");
    job.SetNumber(job::Status, kStatusDelivered);
    job.SetText(job::StatusInfo, "OK");
    job.SetNumber(job::TotalPages, 2u);
    job.SetNumber(job::PagesTransferred, 2u);
    job.SetNumber(job::CallDuration, 40);
    job.SetText(job::Port, "Line 1");
  }
  return jobs;
}

// The bytes of every file under the directories, by path.
std::map<fs::path, std::string> Contents(const std::vector<fs::path> &directories) {
  std::map<fs::path, std::string> contents;
  for (const fs::path &directory : directories)
    for (const fs::path &path : FilesIn(directory))
      contents[path] = ReadBytes(path);
  return contents;
}

// cat writing what the library wrote: every report and the send log, read from copies of their
// own and written out as one stream.
double CatSameBytes(const Sandbox &sandbox, const std::vector<std::string> &reports, const std::string &log) {
  const fs::path sources = sandbox.Scratch("cat");
  std::vector<std::string> command = {"cat"};
  for (std::size_t i = 0; i < reports.size(); ++i) {
    command.push_back((sources / ("report" + std::to_string(i))).string());
    WriteBytes(command.back(), reports[i]);
  }
  command.push_back((sources / "sendlog.txt").string());
  WriteBytes(command.back(), log);
  return TimeProgram(command, (sandbox.Scratch("out") / "written").string());
}

Round WriteReports(const RoundContext &context) {
  const Sandbox sandbox(context.scratch);
  const fs::path documents = sandbox.Scratch("documents");
  const auto before = Contents({sandbox.Product()});
  Round round;
  round.ours = TimeInLibrary(context.library, sandbox, [&](const tool::EntryPoints &library) {
    std::vector<JobRecord> jobs = FinishedJobs(library, documents);
    return TimeOf([&] {
      for (JobRecord &job : jobs)
        library.faxSent(job.View().Bytes());
    });
  });

  std::vector<std::string> reports;
  for (const auto &[path, bytes] : Contents({sandbox.GatewayIn()}))
    reports.push_back(bytes);
  Check(reports.size() == kReports,
        std::to_string(reports.size()) + " reports written, " + std::to_string(kReports) + " expected");
  for (std::size_t i = 0; i < reports.size(); ++i)
    Check(reports[i].find(kSender) != std::string::npos, "a report is not addressed to its sender");
  Check(FilesIn(documents).empty(), "documents of finished jobs were left");
  Check(FilesIn(sandbox.Pending()).empty(), "job files were left");
  const std::string log = ReadBytes(sandbox.Product() / "sendlog.txt");
  Check(before.count(sandbox.Product() / "sendlog.txt") == 0, "the send log was there before the run");
  round.baseline = CatSameBytes(sandbox, reports, log);
  return round;
}

}  // namespace

std::vector<Figure> ReportFigures() {
  return {{"P7", "S_FaxSent writing 1000 delivery reports",
           "cat writing the same bytes (1000 reports and the log) as one stream", 2, WriteReports}};
}

}  // namespace tqv::bench
