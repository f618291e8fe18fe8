// The fax service: takes jobs from the library (S_Scan, S_ScannedEventAccepted), renders and sends
// each on a fax line and hands it back with the session's results (S_FaxSent); a fax that comes in
// on the line is stored and recognised and handed over (S_CreateReceiveFaxFile, S_FaxReceived).
// One log line per call. A job that cannot be rendered or sent is reported back, never dropped.
#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <set>
#include <string>

#include "faxd/call_outcome.h"
#include "faxd/fax_line.h"
#include "faxd/ocr.h"
#include "faxd/page_image.h"
#include "tqv/host/host_library.h"

namespace tqv::faxd {

struct ServiceOptions {
  std::string spoolDir;               // the service's own working directory (exists)
  std::string stationId = "TQVFAXD";  // our identifier when sending
  std::int32_t dueJobsFlag = 0;
  OcrOptions ocr;
  bool recognise = true;       // run OCR on received faxes when Tesseract is there
  bool attachOcrText = false;  // the recognised text goes to the users with the fax
  std::string pictureDir;      // PNGs of every page sent and received; empty = none
  int renderTimeoutSeconds = 120;
  // A call that reached no fax machine (busy, no answer) is tried again this often, each time
  // after this many seconds, before the job is reported as not sent.
  std::uint32_t retries = 3;
  int retryDelaySeconds = 300;
};

struct ServiceCounts {
  int jobs = 0;
  int delivered = 0;
  int failed = 0;  // not sent or sending failed
  int jfax = 0;
  int pending = 0;  // not due yet, or to be tried again: back in the queue
  int received = 0;
};

// "3 jobs: 2 delivered, 1 failed, 0 to JFAX, 0 back in queue; 2 faxes received".
std::string CountsSummary(const ServiceCounts &counts);

class FaxService {
 public:
  FaxService(const tool::EntryPoints &entries, FaxLine &line, ServiceOptions options, std::ostream &log)
      : entries_(entries), line_(line), options_(std::move(options)), log_(log) {}

  // Asks for jobs until the library has none (or none but those put back in this cycle), and
  // handles each. `stopRequested` is asked before every S_Scan.
  ServiceCounts RunCycle(const std::function<bool()> &stopRequested = {});

 private:
  struct JobInFlight;
  // Renders the job into its scratch directory; a failure is kept for Finish to report.
  std::unique_ptr<JobInFlight> Prepare(const unsigned char *job);
  // Hands the job back with its call's results (S_FaxSent), and the fax that came in over.
  void Finish(JobInFlight &job, const CallResult &call, ServiceCounts &counts);
  // Stores the job again (S_FaxPending) to be tried later; false when the library cannot.
  bool Retry(JobInFlight &job, const RecordOutcome &outcome, ServiceCounts &counts);
  void HandOverReceived(const CallResult &call, const std::string &name, ServiceCounts &counts);

  const tool::EntryPoints &entries_;
  FaxLine &line_;
  ServiceOptions options_;
  std::ostream &log_;
  int jobsSeen_ = 0;
  // Job files stored again in this cycle: when one comes back, the cycle ends.
  std::set<std::string> putBack_;
};

}  // namespace tqv::faxd
