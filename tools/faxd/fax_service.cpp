// The service's cycle. The call of one job runs on a thread of its own while the next job is
// rendered, so the line is kept busy; the library is called from the service's thread alone. Each
// job gets a scratch directory of its own under the spool directory, removed when it is handed back; a
// received fax is copied to the name the library gives it before the library hears of it.
#include "faxd/fax_service.h"

#include <array>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <future>
#include <memory>
#include <set>
#include <system_error>

#include "faxd/call_outcome.h"
#include "faxd/job_pages.h"
#include "faxd/png_pages.h"
#include "faxd/tiff_class_f.h"
#include "platform/clock.h"
#include "platform/posix/native_path.h"
#include "tqv/host/host_records.h"
#include "tqv/host/received_fax.h"

namespace tqv::faxd {

namespace {

namespace fs = std::filesystem;
using namespace tool::host_job;

// The fax service's receive record; the library touches only its first part.
constexpr std::size_t kReceiveRecordSize = 2048;
static_assert(kReceiveRecordSize >= TQV_RECEIVE_TOUCHED_SIZE);

std::string BitRateText(std::int32_t speedCode) {
  static constexpr const char *kRates[] = {"2400", "4800", "7200", "9600", "12000", "14400"};
  return std::string(kRates[std::clamp(speedCode, 0, 5)]) + " bit/s";
}

std::string Plural(std::uint32_t count, const std::string &word) {
  // "fax" takes "es", as a word ending in x does.
  return std::to_string(count) + " " + word + (count == 1 ? "" : word.ends_with('x') ? "es" : "s");
}

// Removes the directory and what it holds when the job is done with it.
struct ScratchDir {
  explicit ScratchDir(fs::path where) : path(std::move(where)) {
    std::error_code ignored;
    fs::remove_all(path, ignored);
    fs::create_directories(path, ignored);
  }
  ~ScratchDir() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
  fs::path path;
};

void WritePictures(const std::string &tiff, const std::string &prefix, std::ostream &log) {
  std::vector<std::string> written;
  std::string error;
  if (!WritePngPages(tiff, prefix, written, error)) log << "pictures: " << error << std::endl;
}

}  // namespace

std::string CountsSummary(const ServiceCounts &counts) {
  return Plural(static_cast<std::uint32_t>(counts.jobs), "job") + ": " + std::to_string(counts.delivered) +
         " delivered, " + std::to_string(counts.failed) + " failed, " + std::to_string(counts.jfax) +
         " to JFAX, " + std::to_string(counts.pending) + " back in queue; " +
         Plural(static_cast<std::uint32_t>(counts.received), "fax") + " received";
}

// One job between the scan and S_FaxSent: its record, its scratch directory and, once it is on
// the line, the call running on a thread of its own.
struct FaxService::JobInFlight {
  std::array<unsigned char, TQV_JOB_RECORD_SIZE> record{};
  std::string name;
  std::string number;
  std::unique_ptr<ScratchDir> scratch;
  std::size_t pageCount = 0;
  std::string renderError;  // not empty: the job cannot be sent
  std::future<CallResult> call;
};

namespace {

// The job's call result, waited for; the line is free again afterwards.
CallResult Wait(std::future<CallResult> &call) {
  return call.valid() ? call.get() : CallResult{};
}

}  // namespace

ServiceCounts FaxService::RunCycle(const std::function<bool()> &stopRequested) {
  ServiceCounts counts;
  putBack_.clear();
  std::array<unsigned char, TQV_JOB_RECORD_SIZE> buffer{};
  unsigned char *job = buffer.data();
  // The job on the line while the next is rendered: one line, so at most one.
  std::unique_ptr<JobInFlight> onLine;
  while (!(stopRequested && stopRequested())) {
    buffer.fill(0);
    if (entries_.scan(options_.dueJobsFlag, job) != 1) break;
    const std::string name = fs::path(platform::ToNativePath(ReadText(job, JobFile))).filename().string();
    // A job this cycle put back comes first again when it skips the queue: wait for the next cycle.
    if (putBack_.count(ReadText(job, JobFile)) != 0) break;
    ++counts.jobs;
    entries_.scannedEventAccepted(job);
    const std::int32_t scheduled = ReadNumber(job, ScheduledTime);
    if (ReadNumber(job, SkipQueue) == 0 && scheduled > platform::CurrentTime()) {
      if (entries_.faxPending(job) == 0) {
        ++counts.pending;
        putBack_.insert(ReadText(job, JobFile));
      } else {
        log_ << "job " << name << ": not due, and the library cannot store it again; it is lost" << std::endl;
      }
      continue;
    }
    if (ReadRaw(job, Tag) == TQV_JOB_TAG_JFAX) {
      ++counts.jfax;
      entries_.jfaxReady(job);
      log_ << "job " << name << ": handed back for the JFAX service" << std::endl;
      continue;
    }
    std::unique_ptr<JobInFlight> next = Prepare(job);
    // The line is free once the call on it has ended: the next call starts before the last job
    // is handed back and its incoming fax recognised.
    std::unique_ptr<JobInFlight> done = std::move(onLine);
    CallResult doneCall;
    if (done) doneCall = Wait(done->call);
    if (next->renderError.empty()) {
      // Only the line works on the other thread; the library is called from this one alone.
      next->call = std::async(std::launch::async, [this, &prepared = *next] {
        return line_.Call(
            {prepared.number, (prepared.scratch->path / "send.tif").string(), options_.stationId});
      });
      onLine = std::move(next);
    }
    if (done) Finish(*done, doneCall, counts);
    if (next) Finish(*next, {}, counts);
  }
  if (onLine) Finish(*onLine, Wait(onLine->call), counts);
  return counts;
}

std::unique_ptr<FaxService::JobInFlight> FaxService::Prepare(const unsigned char *job) {
  auto prepared = std::make_unique<JobInFlight>();
  std::copy(job, job + TQV_JOB_RECORD_SIZE, prepared->record.begin());
  prepared->name = fs::path(platform::ToNativePath(ReadText(job, JobFile))).stem().string();
  prepared->number = ReadText(job, FaxNumber);
  prepared->scratch =
      std::make_unique<ScratchDir>(fs::path(options_.spoolDir) / ("job-" + std::to_string(++jobsSeen_)));
  const RenderContext context{ReadNumber(job, FineResolution) != 0 ? Resolution::Fine : Resolution::Normal,
                              prepared->scratch->path.string(), options_.renderTimeoutSeconds};
  const std::time_t now = std::time(nullptr);
  std::vector<PageImage> pages;
  std::string error;
  const std::string tiff = (prepared->scratch->path / "send.tif").string();
  if (!RenderJob(DocumentsOfJob(job, now), now, context, pages, error) || !WriteClassF(tiff, pages, error)) {
    prepared->renderError = error;
  } else if (!options_.pictureDir.empty()) {
    WritePictures(tiff, options_.pictureDir + "/sent-" + prepared->name, log_);
  }
  prepared->pageCount = pages.size();
  return prepared;
}

void FaxService::Finish(JobInFlight &prepared, const CallResult &call, ServiceCounts &counts) {
  unsigned char *job = prepared.record.data();
  RecordOutcome outcome;
  const bool called = prepared.renderError.empty();
  if (called) {
    outcome = SendOutcomeOf(call);
  } else {
    outcome.statusInfo = "Not sent: " + prepared.renderError;
  }
  const std::uint32_t retriesMade = ReadNumber(job, NumRetries);
  if (called && (call.line == LineState::Busy || call.line == LineState::NoAnswer) &&
      retriesMade < options_.retries && Retry(prepared, outcome, counts))
    return;
  WriteText(job, RemoteId, outcome.remoteId);
  WriteText(job, Port, line_.Port());
  WriteNumber(job, Status, outcome.status);
  WriteText(job, StatusInfo, outcome.statusInfo);
  WriteNumber(job, TotalPages, static_cast<std::uint32_t>(prepared.pageCount));
  WriteNumber(job, PagesTransferred, outcome.pages);
  WriteNumber(job, SpeedCode, outcome.speedCode);
  WriteNumber(job, CallDuration, outcome.callDuration);
  ++(outcome.status == kStatusDelivered ? counts.delivered : counts.failed);
  entries_.faxSent(job);

  std::string line = "call: job " + prepared.name + " to " + prepared.number + ": ";
  if (outcome.status == kStatusDelivered) {
    line += "delivered, " + Plural(outcome.pages, "page") + " at " + BitRateText(outcome.speedCode) + " in " +
            std::to_string(outcome.callDuration) + " s to \"" + outcome.remoteId + "\"";
  } else {
    line += "status " + std::to_string(outcome.status) + ", " + outcome.statusInfo;
    if (called)
      line += " (" + Plural(outcome.pages, "page") + " sent, " + std::to_string(outcome.callDuration) + " s)";
  }
  log_ << line << std::endl;
  if (called && call.received) HandOverReceived(call, prepared.name, counts);
  prepared.scratch.reset();
}

bool FaxService::Retry(JobInFlight &prepared, const RecordOutcome &outcome, ServiceCounts &counts) {
  unsigned char *job = prepared.record.data();
  const std::uint32_t retry = ReadNumber(job, NumRetries) + 1;
  const std::int64_t at = platform::CurrentTime() + options_.retryDelaySeconds;
  WriteNumber(job, NumRetries, retry);
  WriteNumber(job, ScheduledTime, static_cast<std::int32_t>(at));
  WriteText(job, StatusInfo, outcome.statusInfo);
  std::string line = "call: job " + prepared.name + " to " + prepared.number + ": " + outcome.statusInfo;
  if (entries_.faxPending(job) != 0) {
    log_ << line << "; the library cannot store it for another try" << std::endl;
    return false;
  }
  putBack_.insert(ReadText(job, JobFile));
  ++counts.pending;
  const auto when = static_cast<std::time_t>(at);
  char clock[16] = "";
  std::tm local{};
  if (localtime_r(&when, &local)) std::strftime(clock, sizeof clock, "%H:%M", &local);
  log_ << line << "; try " << retry << " of " << options_.retries << " at " << clock << std::endl;
  prepared.scratch.reset();
  return true;
}

void FaxService::HandOverReceived(const CallResult &call, const std::string &name, ServiceCounts &counts) {
  const RecordOutcome outcome = ReceiveOutcomeOf(call);
  std::array<unsigned char, kReceiveRecordSize> buffer{};
  unsigned char *record = buffer.data();
  entries_.createReceiveFaxFile(record);
  const std::string faxFile = ReadText(record, tool::host_receive::FaxFile);
  std::error_code failed;
  if (faxFile.empty()) {
    log_ << "receive: S_CreateReceiveFaxFile named no file; the fax from \"" << outcome.remoteId
         << "\" is lost" << std::endl;
    fs::remove(call.receivedTiff, failed);
    return;
  }
  const std::string nativeFax = platform::ToNativePath(faxFile);
  // A reception with no page still reaches the library, which logs and reports it.
  if (!call.receivedTiff.empty()) {
    fs::copy_file(call.receivedTiff, nativeFax, fs::copy_options::overwrite_existing, failed);
    if (failed) {
      log_ << "receive: cannot store the fax as " << nativeFax << ": " << failed.message() << std::endl;
      fs::remove(call.receivedTiff, failed);
      return;
    }
  }

  namespace hr = tool::host_receive;
  std::string recognition = "no text recognition";
  if (options_.recognise && !call.receivedTiff.empty()) {
    std::vector<PageImage> pages;
    std::string error;
    OcrResult ocr;
    if (ReadFaxTiff(call.receivedTiff, pages, error))
      ocr = RecognisePages(pages, options_.spoolDir, options_.ocr);
    if (!ocr.available) {
      recognition = "Tesseract is not installed";
    } else if (!ocr.recognised) {
      recognition = "text not recognised: " + (error.empty() ? ocr.error : error);
    } else {
      const std::string textFile = tool::OcrTextPathFor(faxFile);
      std::ofstream(platform::ToNativePath(textFile), std::ios::binary) << ocr.text;
      WriteNumber(record, hr::OcrAvailable, std::uint32_t{1});
      WriteText(record, hr::OcrTextFile, textFile);
      WriteNumber(record, hr::AttachOcrText, std::uint32_t{options_.attachOcrText ? 1u : 0u});
      recognition = std::to_string(ocr.text.size()) + " characters recognised";
    }
  }
  if (!options_.pictureDir.empty() && !call.receivedTiff.empty())
    WritePictures(call.receivedTiff, options_.pictureDir + "/received-" + name, log_);
  fs::remove(call.receivedTiff, failed);

  WriteText(record, hr::RemoteId, outcome.remoteId);
  WriteNumber(record, hr::Result, outcome.status);
  WriteText(record, hr::Info, outcome.statusInfo);
  WriteNumber(record, hr::SpeedCode, outcome.speedCode);
  WriteNumber(record, hr::CallDuration, outcome.callDuration);
  WriteNumber(record, hr::PagesReceived, outcome.pages);
  WriteNumber(record, hr::FineResolution, std::uint32_t{outcome.fine ? 1u : 0u});
  WriteText(record, hr::Port, line_.Port());
  entries_.faxReceived(record);
  if (outcome.status == kResultReceived) ++counts.received;
  log_ << "receive: " << Plural(outcome.pages, "page") << " from \"" << outcome.remoteId << "\" as "
       << fs::path(nativeFax).filename().string() << ", result " << outcome.status << ", " << recognition
       << std::endl;
}

}  // namespace tqv::faxd
