// Running a helper program (Ghostscript, Tesseract) as a child process: argv only, never a shell,
// stdin from /dev/null, its output collected, and killed when it overruns its time.
#pragma once

#include <string>
#include <vector>

namespace tqv::faxd {

struct ChildResult {
  bool started = false;   // false: the program could not be run at all
  bool timedOut = false;  // killed after the time limit
  int exitCode = -1;      // the exit status; -1 when it ended by a signal
  std::string output;     // stdout and stderr together, at most 64 KiB kept
};

// Runs argv[0] (looked up in PATH) with the arguments and waits for it, at most `timeoutSeconds`.
ChildResult RunChild(const std::vector<std::string> &argv, int timeoutSeconds);

// The first line of a child's output, for a one-line reason; empty when there is none.
std::string FirstLine(const std::string &output);

// True when `program` is found in PATH as an executable file.
bool ProgramAvailable(const std::string &program);

}  // namespace tqv::faxd
