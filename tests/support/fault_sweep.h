// Fault sweeps over a road of the library: the road runs once to count its file operations, then
// once per operation with that operation failing, and once per operation with every operation from
// it on failing (a disk that refuses everything from then on), each time in a fresh installation.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "support/installation.h"

namespace tqv::testing {

// Where the faults of one run fall.
struct FaultPlan {
  std::uint64_t first = 0;  // 0: the run without faults
  bool toTheEnd = false;

  bool Faulted() const { return first != 0; }
  std::string Describe() const;
};

class FaultSweepTest : public InstallationTest {
 protected:
  struct Road {
    std::function<void()> prepare;  // builds the scenario in the fresh installation; not counted
    std::function<void()> run;      // the road itself, with faults armed
    std::function<void(const FaultPlan &)> check;
  };

  // Runs the sweep; `check` first sees the run without faults, whose results later runs compare
  // against. Stops at the first run whose check failed, so one fault is not reported a hundred times.
  // Prints the road's file operations and the runs made.
  void Sweep(const Road &road);

  // Writes the string file with these English texts and, when lines are given, the administration
  // database with them, then starts the library.
  void Install(std::string_view texts, std::string_view database) const;
  // One scan call as the fax service makes it, wanting no due jobs.
  static void Scan();

  // The regular files of a directory (a Windows-form path), by name.
  std::map<std::string, std::string> FilesIn(std::string_view directory) const;
  // True when an event names every one of the words. Always true on the Win32 backend, whose
  // event log the suite cannot read back.
  bool EventNames(const std::vector<std::string> &words) const;
  // The events of this run so far, each "type\tsource\tmessage" on a line, for failure messages.
  std::string EventList() const { return ReadFile(PathOf("sweep-events.log")); }
  // Each file of gateway-in is a whole message: its header lines, and every block with its data
  // and end line. A message that could not be written whole must not be there at all, unless the
  // disk refused its removal too (every operation failing to the end).
  void ExpectOnlyWholeMessages(const FaultPlan &plan) const;
  // True when the message has the recipients and blocks (attachments by name and size) of the
  // baseline message; its texts may differ where a setting could not be read.
  static bool SameShape(std::string_view message, std::string_view baseline);

  // A send or receive log holds the header of the run without faults and whole lines only: a
  // setting that cannot be read may change a column, never cut a line.
  void ExpectWholeLogLines(const std::string &log, const std::string &baseline) const;

  // A fixed clock, so a run without faults and a faulted run write the same bytes.
  static constexpr std::int64_t kNow = 1700000000;
};

}  // namespace tqv::testing
