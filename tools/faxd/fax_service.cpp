// The service's cycle. Each job gets a scratch directory of its own under the spool directory,
// removed when the job is handed back; a received fax is copied to the name the library gives it
// before the library hears of it.
#include "faxd/fax_service.h"

#include <array>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <set>
#include <system_error>

#include "faxd/call_outcome.h"
#include "faxd/job_pages.h"
#include "faxd/png_pages.h"
#include "faxd/tiff_class_f.h"
#include "platform/clock.h"
#include "platform/posix/native_path.h"
#include "tqv/host_records.h"
#include "tqv/received_fax.h"

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
  return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
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

ServiceCounts FaxService::RunCycle(const std::function<bool()> &stopRequested) {
  ServiceCounts counts;
  std::set<std::string> putBack;
  std::array<unsigned char, TQV_JOB_RECORD_SIZE> buffer{};
  unsigned char *job = buffer.data();
  while (!(stopRequested && stopRequested())) {
    buffer.fill(0);
    if (entries_.scan(options_.dueJobsFlag, job) != 1) break;
    const std::string name = fs::path(platform::ToNativePath(ReadText(job, JobFile))).filename().string();
    // A job this cycle put back comes first again when it skips the queue: wait for the next cycle.
    if (putBack.count(ReadText(job, JobFile)) != 0) break;
    ++counts.jobs;
    entries_.scannedEventAccepted(job);
    const std::int32_t scheduled = ReadNumber(job, ScheduledTime);
    if (ReadNumber(job, SkipQueue) == 0 && scheduled > platform::CurrentTime()) {
      if (entries_.faxPending(job) == 0) {
        ++counts.pending;
        putBack.insert(ReadText(job, JobFile));
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
    SendJob(job, counts);
  }
  return counts;
}

void FaxService::SendJob(unsigned char *job, ServiceCounts &counts) {
  const std::string name = fs::path(platform::ToNativePath(ReadText(job, JobFile))).stem().string();
  const std::string number = ReadText(job, FaxNumber);
  const ScratchDir scratch(fs::path(options_.spoolDir) / ("job-" + std::to_string(++jobsSeen_)));
  const RenderContext context{ReadNumber(job, FineResolution) != 0 ? Resolution::Fine : Resolution::Normal,
                              scratch.path.string(), options_.renderTimeoutSeconds};
  const std::time_t now = std::time(nullptr);
  std::vector<PageImage> pages;
  std::string error;
  const std::string tiff = (scratch.path / "send.tif").string();
  RecordOutcome outcome;
  CallResult call;
  bool called = false;
  if (!RenderJob(DocumentsOfJob(job, now), now, context, pages, error) || !WriteClassF(tiff, pages, error)) {
    outcome.statusInfo = "Not sent: " + error;
  } else {
    if (!options_.pictureDir.empty()) WritePictures(tiff, options_.pictureDir + "/sent-" + name, log_);
    call = line_.Call({number, tiff, options_.stationId});
    outcome = SendOutcomeOf(call);
    called = true;
  }
  WriteText(job, RemoteId, outcome.remoteId);
  WriteText(job, Port, line_.Port());
  WriteNumber(job, Status, outcome.status);
  WriteText(job, StatusInfo, outcome.statusInfo);
  WriteNumber(job, TotalPages, static_cast<std::uint32_t>(pages.size()));
  WriteNumber(job, PagesTransferred, outcome.pages);
  WriteNumber(job, SpeedCode, outcome.speedCode);
  WriteNumber(job, CallDuration, outcome.callDuration);
  WriteNumber(job, NumRetries, std::uint32_t{0});
  ++(outcome.status == kStatusDelivered ? counts.delivered : counts.failed);
  entries_.faxSent(job);

  std::string line = "call: job " + name + " to " + number + ": ";
  if (outcome.status == kStatusDelivered) {
    line += "delivered, " + Plural(outcome.pages, "page") + " at " + BitRateText(outcome.speedCode) + " in " +
            std::to_string(outcome.callDuration) + " s to \"" + outcome.remoteId + "\"";
  } else {
    line += "status " + std::to_string(outcome.status) + ", " + outcome.statusInfo;
    if (called)
      line += " (" + Plural(outcome.pages, "page") + " sent, " + std::to_string(outcome.callDuration) + " s)";
  }
  log_ << line << std::endl;
  if (called && call.received) HandOverReceived(call, name, counts);
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
