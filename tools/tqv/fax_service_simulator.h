// The outgoing side of the simulated fax service: scan cycles that take jobs from the library,
// send them on the loopback line and hand them back, printing one line per event.
#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>

#include "tqv/host_library.h"

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

}  // namespace tqv::tool
