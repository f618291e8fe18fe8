#include "library_run.h"

#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

#include "bench_checks.h"

extern char **environ;

namespace tqv::bench {

namespace {

void RunChild(const std::string &library, const Sandbox &sandbox, const LibraryWork &work, int resultPipe) {
  setenv("TQVSPOOL_WINDIR", sandbox.Windows().c_str(), 1);
  setenv("TQVSPOOL_EVENTLOG", (sandbox.Root() / "events.log").c_str(), 1);
  std::string error;
  const auto loaded = tool::HostLibrary::Load(library, error);
  Check(loaded.has_value(), error);
  const tool::EntryPoints &entries = loaded->Entries();
  Check(entries.initialise(0, "") == 0,
        "the library did not start in the sandbox " + sandbox.Root().string());
  const double seconds = work(entries);
  entries.shutdown();
  Check(write(resultPipe, &seconds, sizeof seconds) == static_cast<ssize_t>(sizeof seconds),
        "cannot hand a figure to the parent");
}

}  // namespace

double TimeInLibrary(const std::string &library, const Sandbox &sandbox, const LibraryWork &work) {
  int pipeEnds[2];
  Check(pipe(pipeEnds) == 0, "cannot make a pipe");
  std::fflush(nullptr);
  const pid_t child = fork();
  Check(child >= 0, "cannot start a process");
  if (child == 0) {
    close(pipeEnds[0]);
    RunChild(library, sandbox, work, pipeEnds[1]);
    _exit(0);
  }
  close(pipeEnds[1]);
  double seconds = -1;
  const ssize_t got = read(pipeEnds[0], &seconds, sizeof seconds);
  close(pipeEnds[0]);
  int status = 0;
  waitpid(child, &status, 0);
  Check(WIFEXITED(status) && WEXITSTATUS(status) == 0 && got == static_cast<ssize_t>(sizeof seconds),
        "a library run failed (see above)");
  return seconds;
}

double TimeProgram(const std::vector<std::string> &argv, const std::string &output) {
  std::vector<char *> arguments;
  for (const std::string &argument : argv)
    arguments.push_back(const_cast<char *>(argument.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                   0644);
  pid_t child = 0;
  int status = 0;
  Settle();
  const auto start = std::chrono::steady_clock::now();
  const int spawned = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
  if (spawned == 0) waitpid(child, &status, 0);
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  posix_spawn_file_actions_destroy(&actions);
  Check(spawned == 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0, argv[0] + " failed");
  return seconds;
}

void Settle() {
  sync();
}

double TimeOf(const std::function<void()> &work) {
  Settle();
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace tqv::bench
