// `tqv host`: stands in for the fax service. Loads the library by name, starts it and runs scan
// cycles on a loopback line until stopped, playing the received faxes dropped into --receive-dir
// after each; `tqv host receive` plays one received fax. A library
// that cannot be loaded ends it with exit code 2, a failed start with 1.
#include <chrono>
#include <csignal>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "tqv/commands.h"
#include "tqv/host/fax_service_simulator.h"
#include "tqv/host/host_library.h"
#include "tqv/host/received_fax.h"

namespace tqv::tool {

namespace {

struct HostOptions {
  std::string library;
  std::string textDir;
  std::string receiveDir;
  bool due = false;
  bool once = false;
  int intervalMs = 1000;
  int failEvery = 0;
  ReceivedFax fax;
};

volatile std::sig_atomic_t stopRequested = 0;

void RequestStop(int) {
  stopRequested = 1;
}

void InstallStopHandlers() {
#if defined(_WIN32)
  // Windows has no sigaction; its runtime's signal() keeps the handler for Ctrl+C.
  std::signal(SIGINT, RequestStop);
  std::signal(SIGTERM, RequestStop);
#else
  struct sigaction action {};
  action.sa_handler = RequestStop;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
#endif
}

bool StopRequested() {
  return stopRequested != 0;
}

// Short slices, so a stop request is seen within a moment even during a long interval.
void SleepUnlessStopped(int milliseconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  while (!StopRequested() && std::chrono::steady_clock::now() < end)
    std::this_thread::sleep_for(std::min<std::chrono::steady_clock::duration>(
        end - std::chrono::steady_clock::now(), std::chrono::milliseconds(50)));
}

// Loads and starts the library. kExitSuccess, or the exit code after one line on stderr.
int StartLibrary(const HostOptions &options, std::optional<HostLibrary> &library) {
  const std::string path = options.library.empty() ? DefaultLibraryPath() : options.library;
  if (path.empty()) {
    std::cerr << "tqv host: cannot find the library beside this program; give --library\n";
    return kExitNoLibrary;
  }
  std::string error;
  library = HostLibrary::Load(path, error);
  if (!library) {
    std::cerr << "tqv host: " << error << "\n";
    return kExitNoLibrary;
  }
  const EntryPoints &entries = library->Entries();
  const std::int32_t textFileFlag = options.textDir.empty() ? 0 : 1;
  if (entries.initialise(textFileFlag, options.textDir.c_str()) != 0) {
    std::cerr << "tqv host: S_Initialise failed; see CORVANTA.LOG and the event log\n";
    return kExitFailure;
  }
  std::uint32_t users = 0;
  entries.getNumUsers(&users);
  std::cout << "start: " << path << " initialised"
            << (textFileFlag ? ", text files from " + options.textDir : std::string()) << "; " << users
            << (users == 1 ? " user" : " users") << " may send faxes" << std::endl;
  return kExitSuccess;
}

void ShutDown(const HostLibrary &library) {
  library.Entries().shutdown();
  std::cout << "stop: S_Shutdown" << std::endl;
}

int RunHost(const HostOptions &options) {
  // Before the start, so a stop request during S_Initialise still ends with S_Shutdown.
  InstallStopHandlers();
  std::optional<HostLibrary> library;
  if (const int code = StartLibrary(options, library); code != kExitSuccess) return code;
  FaxServiceSimulator simulator(library->Entries(), {options.due ? 1 : 0, options.failEvery}, std::cout);
  const auto playReceived = [&] {
    if (!options.receiveDir.empty()) PlayReceiveRequests(library->Entries(), options.receiveDir, std::cout);
  };
  if (options.once) {
    const CycleCounts counts = simulator.RunCycle(StopRequested);
    playReceived();
    std::cout << "done: " << CycleSummary(counts) << std::endl;
  } else {
    while (!StopRequested()) {
      simulator.RunCycle(StopRequested);
      playReceived();
      SleepUnlessStopped(options.intervalMs);
    }
  }
  ShutDown(*library);
  return kExitSuccess;
}

int RunReceive(const HostOptions &options) {
  std::optional<HostLibrary> library;
  if (const int code = StartLibrary(options, library); code != kExitSuccess) return code;
  std::string error;
  const bool played = PlayReceivedFax(library->Entries(), options.fax, std::cout, error);
  if (!played) std::cerr << "tqv host receive: " << error << "\n";
  ShutDown(*library);
  return played ? kExitSuccess : kExitFailure;
}

CLI::Validator MaxLength(std::size_t limit) {
  return CLI::Validator(
      [limit](std::string &value) {
        return value.size() > limit ? "longer than " + std::to_string(limit) + " characters" : std::string();
      },
      "", "MaxLength");
}

const CLI::Validator kDtmfDigits(
    [](std::string &value) {
      if (value.find_first_not_of("0123456789*#ABCDabcd") != std::string::npos)
        return std::string("not DTMF digits");
      return value.size() > kMaxDtmfDigits ? "more than " + std::to_string(kMaxDtmfDigits) + " digits"
                                           : std::string();
    },
    "", "DtmfDigits");

}  // namespace

void AddHostCommand(CLI::App &app, CommandAction &action) {
  auto options = std::make_shared<HostOptions>();
  CLI::App *host = app.add_subcommand(
      "host",
      "Simulate the fax service: load the library, send its jobs on a loopback line, play received faxes.");
  host->require_subcommand(0, 1);
  host->add_option("--library", options->library,
                   "The library to load (default: ../lib/libtqvspool.so beside tqv).");
  host->add_option("--text-dir", options->textDir, "Fax the text files of this directory as well.");
  host->add_option(
          "--receive-dir", options->receiveDir,
          "Play the received faxes requested by *.RCV files of this directory (Image=, Csid=, Dtmf=, "
          "Ocr=, Result= lines), each once, then delete them. Image= and Ocr= name plain files of this "
          "directory; a request naming anything else, or a link, is refused and deleted.")
      ->check(CLI::ExistingDirectory);
  host->add_flag("--due", options->due, "Ask for due jobs too (the due-jobs flag of S_Scan).");
  host->add_flag("--once", options->once, "Run one scan cycle, then stop.");
  host->add_option("--interval", options->intervalMs, "Pause between scan cycles in milliseconds.")
      ->check(CLI::Range(1, 86400000))
      ->capture_default_str();
  host->add_option("--fail-every", options->failEvery, "Let every N-th call fail (status 3); 0 = none.")
      ->check(CLI::NonNegativeNumber);

  CLI::App *receive = host->add_subcommand("receive", "Play one received fax through the library.");
  receive->fallthrough();
  receive->add_option("--csid", options->fax.csid, "Identifier of the calling station.")
      ->check(MaxLength(kMaxCsid));
  receive->add_option("--dtmf", options->fax.dtmfDigits, "Digits the caller keyed.")->check(kDtmfDigits);
  receive->add_option("--image", options->fax.imageFile, "The fax image to deliver.")
      ->required()
      ->check(CLI::ExistingFile);
  receive->add_option("--ocr", options->fax.ocrTextFile, "Recognised text of the fax.")
      ->check(CLI::ExistingFile);
  receive->add_option("--result", options->fax.result, "Result code; 4 = received.")->capture_default_str();

  receive->callback([options, &action] { action = [options] { return RunReceive(*options); }; });
  host->callback([options, host, receive, &action] {
    if (!host->got_subcommand(receive)) action = [options] { return RunHost(*options); };
  });
}

}  // namespace tqv::tool
