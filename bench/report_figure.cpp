// Delivery reports: every S_FaxSent mails a report to the sender (a new gateway message, numbered
// by the message counter), appends a line to the send log and deletes the job's documents. The
// baseline makes the same files with nothing but the operations their promises need.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
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

// The library's reports in the order it wrote them: by the number in their names.
std::vector<std::pair<std::string, std::string>> ReportsInOrder(const fs::path &directory) {
  std::vector<std::pair<long, std::pair<std::string, std::string>>> numbered;
  for (const auto &[path, bytes] : Contents({directory})) {
    const std::string name = path.filename().string();
    const std::size_t digits = name.find_first_of("0123456789");
    Check(digits != std::string::npos, "a report without a number: " + name);
    numbered.push_back({std::atol(name.c_str() + digits), {name, bytes}});
  }
  std::sort(numbered.begin(), numbered.end());
  std::vector<std::pair<std::string, std::string>> reports;
  for (auto &entry : numbered)
    reports.push_back(std::move(entry.second));
  return reports;
}

// The counter file as written for the report numbered `number`: the final file with the next
// number in it.
std::string CounterBytes(const std::string &final, long number) {
  const std::size_t at = final.find("Id=");
  Check(at != std::string::npos, "the counter file has no Id");
  const std::size_t end = final.find_first_not_of("0123456789", at + 3);
  return final.substr(0, at + 3) + std::to_string(number + 1) + final.substr(end);
}

// The send log cut into what each report appended, the header going with the first.
std::vector<std::string> LogPieces(const std::string &log, std::size_t lines) {
  std::vector<std::string> pieces(lines);
  std::size_t end = log.size();
  for (std::size_t i = lines; i-- > 0;) {
    Check(end > 0, "the send log has fewer lines than reports");
    const std::size_t start = i == 0 ? 0 : log.rfind('\n', end - 2) + 1;
    pieces[i] = log.substr(start, end - start);
    end = start;
  }
  return pieces;
}

fs::path FloorProgram() {
  return fs::read_symlink("/proc/self/exe").parent_path() / "tqvreportfloor";
}

// tqvreportfloor making the same reports, log, counter and deletions in an installation of its
// own; the result must match the library's byte for byte, so both did the same work.
double Floor(const Sandbox &sandbox, const std::vector<std::pair<std::string, std::string>> &reports,
             const std::string &log) {
  const Sandbox floor(sandbox.Scratch("floor") / "installation");
  const fs::path documents = floor.Scratch("documents");
  const std::string counter = ReadBytes(sandbox.Product() / "SGW_ID.INI");
  const std::vector<std::string> logPieces = LogPieces(log, reports.size());
  // The settings files a report reads, each looked at once (WIN.INI is missing, as in the sandbox).
  std::string plan = "counter\n" + (floor.Product() / "SGW_ID.INI").string() + "\nlog\n" +
                     (floor.Product() / "sendlog.txt").string() + "\n";
  for (const fs::path &look :
       {floor.Windows() / "Corvanta" / "TQVMSERV.INI", floor.Product() / "tqstring.ini",
        floor.Windows() / "WIN.INI", floor.AdminDatabase()})
    plan += "look\n" + look.string() + "\n";
  for (std::size_t i = 0; i < reports.size(); ++i) {
    const long number = std::atol(reports[i].first.c_str() + reports[i].first.find_first_of("0123456789"));
    const std::string counterBytes = CounterBytes(counter, number);
    if (i == 0) WriteBytes(floor.Product() / "SGW_ID.INI", counterBytes);
    const fs::path document = documents / ("doc" + std::to_string(i) + ".pdf");
    WriteBytes(document, RandomBytes(4096, static_cast<unsigned>(i)));
    plan += "report\n" + (floor.GatewayIn() / reports[i].first).string() + "\n" + document.string() + "\n" +
            std::to_string(counterBytes.size()) + " " + std::to_string(reports[i].second.size()) + " " +
            std::to_string(logPieces[i].size()) + "\n" + counterBytes + reports[i].second + logPieces[i];
  }
  const fs::path planFile = floor.Scratch("plan") / "plan";
  WriteBytes(planFile, plan);
  const fs::path output = floor.Scratch("plan") / "seconds";
  TimeProgram({FloorProgram().string(), planFile.string()}, output.string());

  Check(ReadBytes(floor.Product() / "sendlog.txt") == log, "the floor's send log differs from the library's");
  Check(ReadBytes(floor.Product() / "SGW_ID.INI") == counter,
        "the floor's counter differs from the library's");
  Check(FilesIn(documents).empty(), "the floor left documents");
  const std::vector<std::pair<std::string, std::string>> made = ReportsInOrder(floor.GatewayIn());
  Check(made == reports, "the floor's reports differ from the library's");
  return std::atof(ReadBytes(output).c_str());
}

Round WriteReports(const RoundContext &context) {
  const Sandbox sandbox(context.scratch);
  const fs::path documents = sandbox.Scratch("documents");
  const auto before = Contents({sandbox.Product()});
  Round round;
  round.ours = TimeInLibrary(context.library, sandbox, [&](const tool::EntryPoints &library) {
    // Before the set-up, so the timed part starts on a busy machine, as the floor's does.
    sandbox.LetSettingsDirectoriesAge();
    std::vector<JobRecord> jobs = FinishedJobs(library, documents);
    return TimeOf([&] {
      for (JobRecord &job : jobs)
        library.faxSent(job.View().Bytes());
    });
  });

  const std::vector<std::pair<std::string, std::string>> named = ReportsInOrder(sandbox.GatewayIn());
  std::vector<std::string> reports;
  for (const auto &[name, bytes] : named)
    reports.push_back(bytes);
  Check(reports.size() == kReports,
        std::to_string(reports.size()) + " reports written, " + std::to_string(kReports) + " expected");
  for (std::size_t i = 0; i < reports.size(); ++i)
    Check(reports[i].find(kSender) != std::string::npos, "a report is not addressed to its sender");
  Check(FilesIn(documents).empty(), "documents of finished jobs were left");
  Check(FilesIn(sandbox.Pending()).empty(), "job files were left");
  const std::string log = ReadBytes(sandbox.Product() / "sendlog.txt");
  Check(before.count(sandbox.Product() / "sendlog.txt") == 0, "the send log was there before the run");
  round.baseline = Floor(sandbox, named, log);
  round.reference = CatSameBytes(sandbox, reports, log);
  return round;
}

}  // namespace

std::vector<Figure> ReportFigures() {
  return {{"P7", "S_FaxSent writing 1000 delivery reports",
           "tqvreportfloor: the same files by the file operations their promises need, nothing else", 1.3,
           WriteReports, "cat writing the same bytes (1000 reports and the log) as one stream"}};
}

}  // namespace tqv::bench
