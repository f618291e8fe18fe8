// Scan cycles of the simulated fax service. It follows the calling order a fax service owes the
// library: S_Scan, S_ScannedEventAccepted, then exactly one of S_FaxSent, S_JfaxReady or S_FaxPending.
#include "tqv/host/fax_service_simulator.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <optional>
#include <set>
#include <sstream>
#include <system_error>
#include <vector>

#include "platform/clock.h"
#include "platform/file.h"
#include "tqv/host/host_records.h"
#include "tqv/host/loopback_line.h"
#include "tqv/host/received_fax.h"
#include "tqv/shared/display_text.h"

namespace tqv::tool {

std::string CycleSummary(const CycleCounts &counts) {
  std::string summary = Counted(static_cast<std::size_t>(counts.scanned), "job") + ": " +
                        std::to_string(counts.sent) + " sent, " + std::to_string(counts.failed) +
                        " failed, " + std::to_string(counts.jfax) + " to JFAX, " +
                        std::to_string(counts.pending) + " back in queue";
  if (counts.lost > 0) summary += ", " + std::to_string(counts.lost) + " lost";
  return summary;
}

void FaxServiceSimulator::Say(const std::string &line) {
  out_ << line << std::endl;
}

CycleCounts FaxServiceSimulator::RunCycle(const std::function<bool()> &stopRequested) {
  CycleCounts counts;
  std::set<std::string> putBack;
  std::array<unsigned char, TQV_JOB_RECORD_SIZE> buffer{};
  unsigned char *job = buffer.data();
  while (!(stopRequested && stopRequested())) {
    buffer.fill(0);
    if (entries_.scan(options_.dueJobsFlag, job) != 1) break;

    const std::string jobFile = ReadText(job, host_job::JobFile);
    const std::string name(FileNameOf(jobFile));
    if (putBack.count(jobFile) != 0) {
      Say("scan: job " + name + " was put back in this cycle; it waits for the next one");
      break;
    }
    ++counts.scanned;
    const std::string_view tag = ReadRaw(job, host_job::Tag);
    const std::string faxNumber = ReadText(job, host_job::FaxNumber);
    Say("scan: job " + name + " tag " + std::string(tag) + " to " + faxNumber + " (" +
        Counted(static_cast<std::size_t>(host_job::DocumentCount(job)), "document") + ")");
    if (entries_.scannedEventAccepted(job) == 0) Say("accept: job file " + name + " was already gone");

    // A skip-queue job goes at once whatever its schedule: the queue hands it out first every
    // time, so putting it back would hold up every other job until it is due.
    const std::int32_t scheduled = ReadNumber(job, host_job::ScheduledTime);
    if (ReadNumber(job, host_job::SkipQueue) == 0 && scheduled > platform::CurrentTime()) {
      if (entries_.faxPending(job) != 0) {
        ++counts.lost;
        Say("pending: job " + name + " could not be put back (S_FaxPending failed); the job is lost");
        continue;
      }
      ++counts.pending;
      const std::string storedAs = ReadText(job, host_job::JobFile);
      putBack.insert(storedAs);
      Say("pending: job " + name + " not due until " + LocalMinuteText(scheduled) + "; back in queue as " +
          std::string(FileNameOf(storedAs)));
      continue;
    }

    ++calls_;
    const bool failed = options_.failEvery > 0 && calls_ % options_.failEvery == 0;
    FillLoopbackResult(job, failed);
    std::string outcome = "status " + std::to_string(ReadNumber(job, host_job::Status));
    if (failed) outcome += " (" + ReadText(job, host_job::StatusInfo) + ")";
    if (tag == TQV_JOB_TAG_JFAX) {
      ++counts.jfax;
      entries_.jfaxReady(job);
      Say("jfax: job " + name + " to " + faxNumber + " handed back for mailing, " + outcome);
      continue;
    }
    ++(failed ? counts.failed : counts.sent);
    entries_.faxSent(job);
    Say("sent: job " + name + " to " + faxNumber + " on " + std::string(kLoopbackPort) + ", " +
        Counted(ReadNumber(job, host_job::PagesTransferred), "page") + ", " + outcome);
  }
  return counts;
}

}  // namespace tqv::tool

namespace tqv::tool {

namespace {

namespace fs = std::filesystem;

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

// Longer requests are no request of ours; the key lines fit in a few hundred bytes.
constexpr std::size_t kMaxRequestBytes = 64 * 1024;

// A request may name only a file of its own directory: a separator, a drive or a way up would let
// whoever drops requests have other files mailed out and deleted. Empty when the name is fine.
std::string FileNameRefusal(const std::string &name) {
  if (name.empty()) return "is empty";
  if (name == "." || name == "..") return "is no file name";
  if (name.find_first_of("/\\:") != std::string::npos) return "is not a plain file name of the directory";
  if (std::any_of(name.begin(), name.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }))
    return "holds a control character";
  return {};
}

// The fax a request describes, and the files of the directory it names; false with the reason.
bool ParseReceiveRequest(const std::string &text, const fs::path &directory, ReceivedFax &fax,
                         std::vector<fs::path> &named, std::string &error) {
  fax.namedByRequest = true;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) continue;
    const std::string key = Lower(line.substr(0, equals));
    const std::string value = line.substr(equals + 1);
    if (key == "image" || key == "ocr") {
      if (const std::string refusal = FileNameRefusal(value); !refusal.empty()) {
        error = "names " + key + " \"" + DisplayText(value) + "\", which " + refusal;
        return false;
      }
      const fs::path file = directory / value;
      named.push_back(file);
      (key == "image" ? fax.imageFile : fax.ocrTextFile) = file.string();
    } else if (key == "csid") {
      fax.csid = value.substr(0, kMaxCsid);
    } else if (key == "dtmf") {
      fax.dtmfDigits = value.substr(0, kMaxDtmfDigits);
    } else if (key == "result") {
      fax.result = static_cast<std::uint32_t>(std::strtoul(value.c_str(), nullptr, 10));
    }
  }
  if (fax.imageFile.empty()) error = "names no image";
  return error.empty();
}

}  // namespace

int PlayReceiveRequests(const EntryPoints &entries, const std::string &directory, std::ostream &out) {
  std::error_code failed;
  std::vector<fs::path> requests;
  for (const auto &entry : fs::directory_iterator(directory, failed))
    if (Lower(entry.path().extension().string()) == ".rcv") requests.push_back(entry.path());
  std::sort(requests.begin(), requests.end());
  int played = 0;
  for (const fs::path &request : requests) {
    std::string error;
    bool held = false;
    std::optional<std::string> text;
    if (request.filename().string().find('\\') != std::string::npos) {
      // The file layer takes "\" for a separator, so it would open some other file.
      error = "its name holds a backslash";
    } else if (std::optional<platform::File> file = platform::File::OpenExclusive(request.string())) {
      text = file->ReadAll(kMaxRequestBytes + 1);
      if (text && text->size() > kMaxRequestBytes) text.reset();
    } else {
      error = "it " + WhyNotOpened(request.string(), false, held);
    }
    if (held) continue;  // its writer still holds it
    ReceivedFax fax;
    std::vector<fs::path> named{request};
    if (!text) {
      if (error.empty()) error = "it cannot be read or is too long";
    } else if (ParseReceiveRequest(*text, request.parent_path(), fax, named, error) &&
               PlayReceivedFax(entries, fax, out, error)) {
      ++played;
      error.clear();
    }
    if (!error.empty())
      out << "receive: request " << request.filename().string() << ": " << error << "; removed" << std::endl;
    // Only names of this directory are ever here; a link among them goes, never what it points to.
    for (const fs::path &file : named)
      fs::remove(file, failed);
  }
  return played;
}

}  // namespace tqv::tool
