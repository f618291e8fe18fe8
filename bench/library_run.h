// Running the library as a fax service does, and the machine's own programs for the baselines.
// Each library run is a child process that loads the library afresh and starts it in the sandbox:
// the library keeps state between calls (caches, the pass timer), and every round must begin cold,
// as a service does after a restart.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "sandbox.h"
#include "tqv/host/host_library.h"

namespace tqv::bench {

// What a run measured, in seconds; the work times only the calls it is about.
using LibraryWork = std::function<double(const tool::EntryPoints &)>;

// Loads `library` in a child process with the sandbox's environment, starts it (S_Initialise with
// text files off), runs `work` and shuts it down. The child's failure fails the bench.
double TimeInLibrary(const std::string &library, const Sandbox &sandbox, const LibraryWork &work);

// Runs a program (looked up in PATH) with its standard output into `output`, and returns its
// wall time in seconds, process start included, settled first. Fails the bench unless it exits with 0.
double TimeProgram(const std::vector<std::string> &argv, const std::string &output = "/dev/null");

// Writes every changed file out to the disk. Called before each timed part, so neither side of a
// figure pays for writing back what the other side (or the set-up) left in memory.
void Settle();

// Seconds taken by `work`, settled first.
double TimeOf(const std::function<void()> &work);

}  // namespace tqv::bench
