// The mail gateway's side of generated traffic, and the account of it: every complete file the
// library wrote (gateway-in messages, text-job results) is taken, classified by the identifier it
// carries and checked, then set against what the writers' manifests say must come back.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tqv/traffic/traffic_installation.h"

namespace tqv::tool {

// Takes every complete output, appends one line per output to the collected list and deletes the
// file. Files still held by the library are left for the next call. The number taken.
int CollectTrafficOutputs(const TrafficPaths &paths);

struct TrafficTally {
  std::map<std::string, int> itemsIn;  // per item kind
  int expectedJobs = 0;
  std::map<std::string, int> expected;   // per output kind, over all items
  std::map<std::string, int> collected;  // per output kind, as taken
  int faxesRouted = 0;                   // users the received faxes went to
  int expectedErrorEvents = 0;
  int errorEvents = 0;                 // type 1 lines of the event log
  std::vector<std::string> missing;    // "<id> <output>: expected n, got m" (fewer)
  std::vector<std::string> surplus;    // the same, more than expected, or for no known item
  std::vector<std::string> damaged;    // outputs cut short, changed or mixed up
  std::vector<std::string> leftovers;  // input or work files still lying where none may
};

// Reads the manifests, the collected list and the event log, and lists what remains in the input,
// pending and work directories.
TrafficTally TallyTraffic(const TrafficPaths &paths);

// Nothing missing, nothing more than expected, nothing damaged, no unexpected error event.
bool TrafficAccounted(const TrafficTally &tally, bool requireEmptyDirectories);

// The figures, one per line.
std::string TrafficSummary(const TrafficTally &tally);

}  // namespace tqv::tool
