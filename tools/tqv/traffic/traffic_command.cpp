// `tqv traffic`: mixed traffic for a sandbox installation, as the mail gateway, the voice recorder
// and the fax line would produce it, and the account of what came back. `setup` makes the
// installation, `write` drops the traffic (from several processes), `collect` plays the mail
// gateway that takes the outputs, `check` says whether every input is accounted for.
#include "tqv/commands.h"

#if defined(TQV_MAIL_BRIDGE)

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <iostream>
#include <memory>
#include <thread>
#include <vector>

#include "tqv/traffic/traffic_installation.h"
#include "tqv/traffic/traffic_tally.h"
#include "tqv/traffic/traffic_writer.h"

namespace tqv::tool {

namespace {

using Clock = std::chrono::steady_clock;

struct TrafficOptions {
  std::string root;
  std::string strings;
  int messages = 0, textFiles = 0, voicemail = 0, faxes = 0, admin = 0;
  int malformedPercent = 10;
  int writers = 1;
  int holdMax = 50;
  double spread = 0;
  double seconds = 0;
  double rate = 5;
  unsigned seed = 1;
  bool follow = false;
  double wait = 0;
  bool empty = false;
};

std::atomic<bool> stopRequested{false};

void RequestStop(int) {
  stopRequested = true;
}

void InstallStopHandlers() {
  struct sigaction action {};
  action.sa_handler = RequestStop;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

void SleepUnlessStopped(Clock::duration length) {
  const auto end = Clock::now() + length;
  while (!stopRequested && Clock::now() < end)
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

// The writer's share of a count: spread as evenly as it goes.
int ShareOf(int count, int writer, int writers) {
  return count / writers + (writer < count % writers ? 1 : 0);
}

WriterPlan PlanFor(const TrafficOptions &options, int writer) {
  WriterPlan plan;
  plan.writer = writer;
  plan.seconds = options.seconds;
  plan.perSecond = options.rate / options.writers;
  plan.malformedPercent = options.malformedPercent;
  plan.spreadSeconds = options.spread;
  plan.holdMaxMilliseconds = options.holdMax;
  plan.seed = options.seed;
  const auto split = [&](int count, TrafficKind good, TrafficKind bad) {
    const int malformed = (count * options.malformedPercent + 50) / 100;
    plan.counts[good] = ShareOf(count - malformed, writer, options.writers);
    if (bad != good) plan.counts[bad] = ShareOf(malformed, writer, options.writers);
  };
  split(options.messages, TrafficKind::Message, TrafficKind::BadMessage);
  split(options.textFiles, TrafficKind::TextFile, TrafficKind::BadTextFile);
  split(options.voicemail, TrafficKind::Voicemail, TrafficKind::BadVoicemail);
  plan.counts[TrafficKind::ReceivedFax] = ShareOf(options.faxes, writer, options.writers);
  plan.counts[TrafficKind::AdminRequest] = ShareOf(options.admin, writer, options.writers);
  return plan;
}

int ItemsSoFar(const TrafficPaths &paths) {
  int items = 0;
  for (const auto &[kind, count] : TallyTraffic(paths).itemsIn)
    items += count;
  return items;
}

// One process per writer; the parent forwards a stop request and reports progress each minute.
int RunWrite(const TrafficOptions &options) {
  const TrafficPaths paths(options.root);
  InstallStopHandlers();
  std::vector<pid_t> children;
  for (int writer = 0; writer < options.writers; ++writer) {
    const pid_t child = ::fork();
    if (child < 0) {
      std::cerr << "tqv traffic: cannot start writer " << writer << "\n";
      stopRequested = true;
      break;
    }
    if (child == 0) ::_exit(RunWriter(paths, PlanFor(options, writer), stopRequested) < 0 ? 1 : 0);
    children.push_back(child);
  }
  bool failed = children.size() != static_cast<std::size_t>(options.writers);
  auto nextReport = Clock::now() + std::chrono::minutes(1);
  for (std::size_t running = children.size(); running > 0;) {
    int status = 0;
    const pid_t done = ::waitpid(-1, &status, WNOHANG);
    if (done > 0) {
      --running;
      failed = failed || !WIFEXITED(status) || WEXITSTATUS(status) != 0;
      continue;
    }
    if (stopRequested)
      for (const pid_t child : children)
        ::kill(child, SIGTERM);
    if (Clock::now() >= nextReport) {
      std::cout << "writing: " << ItemsSoFar(paths) << " items so far" << std::endl;
      nextReport += std::chrono::minutes(1);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  const TrafficTally tally = TallyTraffic(paths);
  std::cout << "wrote:";
  for (const auto &[kind, count] : tally.itemsIn)
    std::cout << " " << kind << " " << count;
  std::cout << "\nexpected: " << tally.expectedJobs << " jobs";
  for (const auto &[output, count] : tally.expected)
    std::cout << ", " << output << " " << count;
  std::cout << ", error events " << tally.expectedErrorEvents << std::endl;
  return failed ? kExitFailure : kExitSuccess;
}

int RunCollect(const TrafficOptions &options) {
  const TrafficPaths paths(options.root);
  InstallStopHandlers();
  int taken = CollectTrafficOutputs(paths);
  while (options.follow && !stopRequested) {
    SleepUnlessStopped(std::chrono::seconds(1));
    taken += CollectTrafficOutputs(paths);
  }
  std::cout << "collected: " << taken << " outputs" << std::endl;
  return kExitSuccess;
}

int RunCheck(const TrafficOptions &options) {
  const TrafficPaths paths(options.root);
  InstallStopHandlers();
  const auto deadline =
      Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(options.wait));
  auto nextReport = Clock::now() + std::chrono::seconds(10);
  CollectTrafficOutputs(paths);
  TrafficTally tally = TallyTraffic(paths);
  while (!TrafficAccounted(tally, options.empty) && Clock::now() < deadline && !stopRequested) {
    if (Clock::now() >= nextReport) {
      std::cout << "waiting: " << tally.missing.size() << " outputs missing, " << tally.leftovers.size()
                << " files left" << std::endl;
      nextReport += std::chrono::seconds(10);
    }
    SleepUnlessStopped(std::chrono::seconds(1));
    CollectTrafficOutputs(paths);
    tally = TallyTraffic(paths);
  }
  std::cout << TrafficSummary(tally);
  const bool accounted = TrafficAccounted(tally, options.empty);
  std::cout << (accounted ? "result: every input accounted for" : "result: FAILED") << std::endl;
  return accounted ? kExitSuccess : kExitFailure;
}

int RunSetup(const TrafficOptions &options) {
  std::string error;
  if (!SetUpTrafficInstallation(TrafficPaths(options.root), options.strings, error)) {
    std::cerr << "tqv traffic setup: " << error << "\n";
    return kExitFailure;
  }
  const TrafficPaths paths(options.root);
  std::cout << "TQVSPOOL_WINDIR=" << paths.windows << "\nTQVSPOOL_EVENTLOG=" << paths.eventLog << std::endl;
  return kExitSuccess;
}

void AddRoot(CLI::App *command, TrafficOptions &options) {
  command->add_option("DIR", options.root, "The sandbox installation's root directory.")->required();
}

}  // namespace

void AddTrafficCommand(CLI::App &app, CommandAction &action) {
  auto options = std::make_shared<TrafficOptions>();
  CLI::App *traffic =
      app.add_subcommand("traffic", "Generate mixed traffic into a sandbox installation and account for it.");
  traffic->require_subcommand(1);

  CLI::App *setup =
      traffic->add_subcommand("setup", "Make a sandbox installation; prints the environment the host needs.");
  AddRoot(setup, *options);
  setup->add_option("--strings", options->strings, "The string file to install (tqstring.ini).")
      ->check(CLI::ExistingFile);
  setup->callback([options, &action] { action = [options] { return RunSetup(*options); }; });

  CLI::App *write = traffic->add_subcommand(
      "write",
      "Drop traffic as its writers would: each file held exclusively for a random time while it is written.");
  AddRoot(write, *options);
  write->add_option("--messages", options->messages, "Gateway messages to write.")
      ->check(CLI::NonNegativeNumber);
  write->add_option("--text-files", options->textFiles, "Text files to write.")
      ->check(CLI::NonNegativeNumber);
  write->add_option("--voicemail", options->voicemail, "Voicemail recordings to leave.")
      ->check(CLI::NonNegativeNumber);
  write->add_option("--faxes", options->faxes, "Received faxes to request from tqv host --receive-dir.")
      ->check(CLI::NonNegativeNumber);
  write->add_option("--admin", options->admin, "Administration requests to write.")
      ->check(CLI::NonNegativeNumber);
  write
      ->add_option("--malformed", options->malformedPercent,
                   "Percent of messages, text files and voicemail that are malformed.")
      ->check(CLI::Range(0, 100))
      ->capture_default_str();
  write->add_option("--writers", options->writers, "Writer processes.")
      ->check(CLI::Range(1, 10))
      ->capture_default_str();
  write
      ->add_option("--hold-max", options->holdMax,
                   "Longest time a file is held half-written, in milliseconds.")
      ->check(CLI::Range(0, 60000))
      ->capture_default_str();
  write->add_option("--spread", options->spread, "Spread the counted items over this many seconds.")
      ->check(CLI::NonNegativeNumber);
  CLI::Option *seconds =
      write->add_option("--seconds", options->seconds, "Write mixed traffic for this long instead of counts.")
          ->check(CLI::PositiveNumber);
  write->add_option("--rate", options->rate, "Items per second over all writers, with --seconds.")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  write->add_option("--seed", options->seed, "Seed of the random choices.")->capture_default_str();
  write->callback([options, seconds, &action] {
    const bool counted =
        options->messages + options->textFiles + options->voicemail + options->faxes + options->admin > 0;
    if (counted == (seconds->count() > 0)) throw CLI::ValidationError("give either counts or --seconds");
    action = [options] { return RunWrite(*options); };
  });

  CLI::App *collect =
      traffic->add_subcommand("collect", "Take the outputs as the mail gateway would, and list them.");
  AddRoot(collect, *options);
  collect->add_flag("--follow", options->follow, "Go on taking outputs every second until stopped.");
  collect->callback([options, &action] { action = [options] { return RunCollect(*options); }; });

  CLI::App *check = traffic->add_subcommand(
      "check", "Collect, then account for every input written; exit 1 when any is lost.");
  AddRoot(check, *options);
  check->add_option("--wait", options->wait, "Wait up to this many seconds for the outputs to come.")
      ->check(CLI::NonNegativeNumber);
  check->add_flag("--empty", options->empty,
                  "Also require the input, pending and work directories to be empty.");
  check->callback([options, &action] { action = [options] { return RunCheck(*options); }; });
}

}  // namespace tqv::tool

#else

#include <iostream>

namespace tqv::tool {

// The generator writes and reads gateway files with the mail bridge's code, which this build lacks.
void AddTrafficCommand(CLI::App &app, CommandAction &action) {
  CLI::App *command = app.add_subcommand("traffic", "Generate mixed traffic (POSIX builds only).");
  command->allow_extras();
  command->callback([&action] {
    action = [] {
      std::cerr << "tqv traffic: not part of this build (it needs the mail bridge)\n";
      return kExitFailure;
    };
  });
}

}  // namespace tqv::tool

#endif
