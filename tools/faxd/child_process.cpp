// Child processes on POSIX: fork and execvp, the output read through a pipe with poll so a child
// that never ends cannot hold the service; on timeout the child is killed and reaped.
#include "faxd/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <sstream>

namespace tqv::faxd {

namespace {

constexpr std::size_t kMaxOutput = 64 * 1024;

}  // namespace

ChildResult RunChild(const std::vector<std::string> &argv, int timeoutSeconds) {
  ChildResult result;
  if (argv.empty()) return result;
  int pipeEnds[2];
  if (pipe2(pipeEnds, O_CLOEXEC) != 0) return result;
  std::vector<char *> args;
  for (const std::string &arg : argv)
    args.push_back(const_cast<char *>(arg.c_str()));
  args.push_back(nullptr);

  const pid_t pid = fork();
  if (pid < 0) {
    close(pipeEnds[0]);
    close(pipeEnds[1]);
    return result;
  }
  if (pid == 0) {
    // Only async-signal-safe calls from here to exec.
    const int devNull = open("/dev/null", O_RDONLY);
    if (devNull >= 0) dup2(devNull, STDIN_FILENO);
    dup2(pipeEnds[1], STDOUT_FILENO);
    dup2(pipeEnds[1], STDERR_FILENO);
    execvp(args[0], args.data());
    _exit(127);
  }
  close(pipeEnds[1]);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds);
  char buffer[4096];
  while (true) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) {
      result.timedOut = true;
      kill(pid, SIGKILL);
      break;
    }
    pollfd readable{pipeEnds[0], POLLIN, 0};
    const int ready = poll(&readable, 1, static_cast<int>(left.count()));
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) continue;
    const ssize_t got = read(pipeEnds[0], buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    if (result.output.size() < kMaxOutput)
      result.output.append(buffer,
                           std::min(static_cast<std::size_t>(got), kMaxOutput - result.output.size()));
  }
  close(pipeEnds[0]);
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  // execvp failing shows as 127 with no output of the program's own.
  result.started = !(WIFEXITED(status) && WEXITSTATUS(status) == 127 && result.output.empty());
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

std::string FirstLine(const std::string &output) {
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    while (!line.empty() && (line.back() == '\r' || line.back() == ' '))
      line.pop_back();
    if (!line.empty()) return line;
  }
  return {};
}

bool ProgramAvailable(const std::string &program) {
  const char *path = std::getenv("PATH");
  std::istringstream directories(path ? path : "/usr/bin:/bin");
  for (std::string directory; std::getline(directories, directory, ':');)
    if (!directory.empty() && access((directory + "/" + program).c_str(), X_OK) == 0) return true;
  return false;
}

}  // namespace tqv::faxd
