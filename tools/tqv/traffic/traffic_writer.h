// Writers of generated traffic. Each file is written as the mail gateway and the voice recorder
// must write: created and held without sharing, and visible in its directory only while held, so
// the library meets it half-written and locked, and must leave it for a later pass.
#pragma once

#include <atomic>
#include <map>
#include <string>

#include "tqv/traffic/traffic_installation.h"
#include "tqv/traffic/traffic_items.h"

namespace tqv::tool {

// Writes `file` into the staging area held exclusively, links it into its directory after the
// first half, holds it `holdMilliseconds` more and then writes the rest. False with the reason
// when it cannot be created, or when a file of that name already exists.
bool PlaceHeldFile(const std::string &stagingDirectory, const TrafficFile &file, int holdMilliseconds,
                   std::string &error);

struct WriterPlan {
  int writer = 0;  // 0 to 9, part of every identifier
  // Count mode: exactly these items, in random order.
  std::map<TrafficKind, int> counts;
  // Duration mode (when seconds > 0): items of every kind, chosen at random, at `perSecond`.
  double seconds = 0;
  double perSecond = 5;
  int malformedPercent = 10;
  // Count mode: spread the items evenly over this many seconds (0: as fast as they go).
  double spreadSeconds = 0;
  int holdMaxMilliseconds = 50;
  unsigned seed = 1;
};

// Writes the plan's items, appending one manifest line per item once all its files are in place.
// Stops early when `stop` becomes true. The number of items written, or -1 after one line on stderr.
int RunWriter(const TrafficPaths &paths, const WriterPlan &plan, const std::atomic<bool> &stop);

}  // namespace tqv::tool
