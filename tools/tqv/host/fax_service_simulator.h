// The simulated fax service: scan cycles that take jobs from the library, send them on the
// loopback line and hand them back, and received faxes played from requests dropped into a
// directory. One line per event.
#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>

#include "tqv/host/host_library.h"

namespace tqv::tool {

struct SimulatorOptions {
  std::int32_t dueJobsFlag = 0;
  // Every n-th call fails; 0 = none.
  int failEvery = 0;
};

struct CycleCounts {
  int scanned = 0;
  int sent = 0;
  int failed = 0;
  int jfax = 0;
  int pending = 0;
  int lost = 0;  // S_FaxPending could not store the job again
};

// "3 jobs: 1 sent, 1 failed, 0 to JFAX, 1 back in queue".
std::string CycleSummary(const CycleCounts &counts);

class FaxServiceSimulator {
 public:
  FaxServiceSimulator(const EntryPoints &entries, SimulatorOptions options, std::ostream &out)
      : entries_(entries), options_(options), out_(out) {}

  // Calls S_Scan until it has no job. A job that this cycle put back is left in the queue for the
  // next cycle, so a job that is not yet due cannot keep the cycle going forever. `stopRequested`
  // is asked before every S_Scan; a job already taken is always finished.
  CycleCounts RunCycle(const std::function<bool()> &stopRequested = {});

 private:
  void Say(const std::string &line);

  const EntryPoints &entries_;
  SimulatorOptions options_;
  std::ostream &out_;
  // Calls made so far, over all cycles, for failEvery.
  int calls_ = 0;
};

// Plays every received-fax request ("*.RCV") of `directory` once, then deletes the request and
// the files it names there. A request is "Key=Value" lines: Image (required), Csid, Dtmf, Ocr and
// Result, names relative to the directory. A request still held by its writer waits for the next
// call; one that cannot be played is reported and removed, so it cannot come back forever.
// The number of faxes handed to the library.
int PlayReceiveRequests(const EntryPoints &entries, const std::string &directory, std::ostream &out);

}  // namespace tqv::tool
