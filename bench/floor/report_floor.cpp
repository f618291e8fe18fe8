// tqvreportfloor: the least file work that delivery reports can cost while keeping what the library
// promises about them, so that P7 measures the library's overhead and not the promises. Reads a
// plan (paths and bytes) whole, then times only the file operations and prints the seconds.
// Any failed operation ends it with 1 and the reason, so a fast wrong floor never reaches the table.
//   tqvreportfloor PLAN
// PLAN: "counter\n<path>\nlog\n<path>\n", then "look\n<path>\n" per settings file each report looks at,
// then per report "report\n<report path>\n<document path>\n<counter> <report> <log line>\n" (byte
// counts) followed by those bytes: the counter file, the report, the log line (the first with the
// log's header before it).
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct Report {
  std::string path;
  std::string document;
  std::string counterBytes;
  std::string reportBytes;
  std::string logBytes;
};

struct Plan {
  std::string counter;
  std::string log;
  std::vector<std::string> looks;
  std::vector<Report> reports;
};

[[noreturn]] void Fail(const std::string &what) {
  std::fprintf(stderr, "tqvreportfloor: %s: %s\n", what.c_str(), errno ? std::strerror(errno) : "bad plan");
  std::exit(1);
}

void Must(bool done, const std::string &what) {
  if (!done) Fail(what);
}

class PlanReader {
 public:
  explicit PlanReader(std::string text) : text_(std::move(text)) {}
  bool AtEnd() const { return at_ >= text_.size(); }
  std::string Line() {
    const std::size_t end = text_.find('\n', at_);
    Must(end != std::string::npos, "a line is missing");
    std::string line = text_.substr(at_, end - at_);
    at_ = end + 1;
    return line;
  }
  std::string Bytes(std::size_t count) {
    Must(at_ + count <= text_.size(), "the plan ends early");
    std::string bytes = text_.substr(at_, count);
    at_ += count;
    return bytes;
  }

 private:
  std::string text_;
  std::size_t at_ = 0;
};

Plan ReadPlan(const char *path) {
  std::ifstream stream(path, std::ios::binary);
  Must(static_cast<bool>(stream), std::string("cannot read ") + path);
  PlanReader reader{std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>())};
  Plan plan;
  while (!reader.AtEnd()) {
    const std::string kind = reader.Line();
    if (kind == "counter") {
      plan.counter = reader.Line();
    } else if (kind == "log") {
      plan.log = reader.Line();
    } else if (kind == "look") {
      plan.looks.push_back(reader.Line());
    } else if (kind == "report") {
      Report report;
      report.path = reader.Line();
      report.document = reader.Line();
      std::size_t sizes[3] = {};
      Must(std::sscanf(reader.Line().c_str(), "%zu %zu %zu", &sizes[0], &sizes[1], &sizes[2]) == 3,
           "a report without its sizes");
      report.counterBytes = reader.Bytes(sizes[0]);
      report.reportBytes = reader.Bytes(sizes[1]);
      report.logBytes = reader.Bytes(sizes[2]);
      plan.reports.push_back(std::move(report));
    } else {
      errno = 0;
      Fail("unknown plan entry '" + kind + "'");
    }
  }
  return plan;
}

std::string DirectoryOf(const std::string &path) {
  const std::size_t cut = path.rfind('/');
  return cut == std::string::npos ? "." : path.substr(0, cut);
}

void WriteAll(int fd, std::string_view bytes, const std::string &what) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    Must(written > 0, what);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

// A settings file is looked at once per call, so another process's change is seen by the next one;
// a missing one also costs its directory's stamp, where another spelling of its name could appear.
void LookAtSettings(const std::vector<std::string> &looks) {
  struct stat info {};
  for (const std::string &look : looks)
    if (::stat(look.c_str(), &info) != 0) Must(::stat(DirectoryOf(look).c_str(), &info) == 0, look);
}

// The counter is taken as it is now, replaced whole through a private name, and stamped again so
// the next report knows the file it sees is its own write.
void StepCounter(const std::string &counter, const std::string &bytes, const std::string &temporary) {
  struct stat info {};
  Must(::stat(counter.c_str(), &info) == 0, counter);
  const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  Must(fd >= 0, temporary);
  WriteAll(fd, bytes, temporary);
  Must(::close(fd) == 0, temporary);
  Must(::rename(temporary.c_str(), counter.c_str()) == 0, counter);
  Must(::stat(counter.c_str(), &info) == 0, counter);
}

// A new shared file is made and locked under a hidden name and only then linked in, so nobody
// takes it before it is held; it is written through the held handle.
void CreateShared(const std::string &path, const std::string &hidden, std::string_view bytes, int lockMode) {
  const int fd =
      ::open(hidden.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666);
  Must(fd >= 0, hidden);
  Must(::flock(fd, lockMode | LOCK_NB) == 0, hidden);
  Must(::link(hidden.c_str(), path.c_str()) == 0, path);
  Must(::unlink(hidden.c_str()) == 0, hidden);
  WriteAll(fd, bytes, path);
  Must(::close(fd) == 0, path);
}

// An existing file opens only as a plain file, not through a link, never blocking on a FIFO.
int OpenPlain(const std::string &path, int access) {
  const int fd = ::open(path.c_str(), access | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return fd;
  struct stat info {};
  Must(::fstat(fd, &info) == 0 && S_ISREG(info.st_mode), path);
  return fd;
}

// The log is appended under a shared lock, at its end as it is now.
void AppendLog(const std::string &log, std::string_view line, const std::string &hidden) {
  const int fd = OpenPlain(log, O_WRONLY);
  if (fd < 0) {
    Must(errno == ENOENT, log);
    CreateShared(log, hidden, line, LOCK_SH);
    return;
  }
  Must(::flock(fd, LOCK_SH | LOCK_NB) == 0, log);
  Must(::lseek(fd, 0, SEEK_END) >= 0, log);
  WriteAll(fd, line, log);
  Must(::close(fd) == 0, log);
}

// A document goes only when no other handle holds it.
void DeleteDocument(const std::string &document) {
  const int fd = OpenPlain(document, O_RDONLY);
  Must(fd >= 0, document);
  Must(::flock(fd, LOCK_EX | LOCK_NB) == 0, document);
  Must(::close(fd) == 0, document);
  Must(::unlink(document.c_str()) == 0, document);
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: tqvreportfloor PLAN\n");
    return 2;
  }
  const Plan plan = ReadPlan(argv[1]);
  Must(!plan.counter.empty() && !plan.log.empty(), "the plan names no counter or log");
  // Names made before the clock starts: the library's come from a counter it keeps in memory.
  const std::string pid = std::to_string(::getpid());
  std::vector<std::string> counterTemporaries, hiddenNames;
  for (std::size_t i = 0; i < plan.reports.size(); ++i) {
    counterTemporaries.push_back(plan.counter + ".tqvini." + pid + "." + std::to_string(i));
    hiddenNames.push_back(DirectoryOf(plan.reports[i].path) + "/.tqvnew." + pid + "." + std::to_string(i));
  }
  const std::string logHidden = DirectoryOf(plan.log) + "/.tqvnew." + pid + ".log";

  const auto start = std::chrono::steady_clock::now();
  for (std::size_t i = 0; i < plan.reports.size(); ++i) {
    const Report &report = plan.reports[i];
    LookAtSettings(plan.looks);
    StepCounter(plan.counter, report.counterBytes, counterTemporaries[i]);
    CreateShared(report.path, hiddenNames[i], report.reportBytes, LOCK_EX);
    AppendLog(plan.log, report.logBytes, logHidden);
    DeleteDocument(report.document);
  }
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  std::printf("%.9f\n", seconds);
  return 0;
}
