// tqvfaxd: the fax service for Linux. Loads the library, starts it, and runs scan cycles that
// send each job on the loopback line and hand every fax that comes in to the library; `tqvfaxd
// png` turns a fax image into PNG pages. Exit codes: 0 done, 1 the library would not start or a
// command failed, 2 the library cannot be loaded, 64 a usage error.
#include <CLI/CLI.hpp>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <map>
#include <optional>
#include <thread>

#include "faxd/fax_service.h"
#include "faxd/loopback_line.h"
#include "faxd/png_pages.h"
#include "tqv/host/host_library.h"

namespace {

using namespace tqv::faxd;

volatile std::sig_atomic_t stopRequested = 0;

void RequestStop(int) {
  stopRequested = 1;
}

bool StopRequested() {
  return stopRequested != 0;
}

void InstallStopHandlers() {
  struct sigaction action {};
  action.sa_handler = RequestStop;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

struct Options {
  std::string library;
  std::string textDir;
  std::string spoolDir = "/var/spool/tqvfaxd";
  std::string stationId = "TQVFAXD";
  std::string answerId;
  std::string pictureDir;
  std::string wavFile;
  std::string farEnd = "fax";
  bool due = false;
  bool once = false;
  bool noOcr = false;
  bool attachOcrText = false;
  int intervalMs = 1000;
  std::uint32_t retries = 3;
  int retryDelaySeconds = 300;
  // png
  std::string image;
  std::string prefix;
};

const std::map<std::string, FarEnd> kFarEnds = {{"fax", FarEnd::Fax},
                                                {"busy", FarEnd::Busy},
                                                {"silent", FarEnd::Silent},
                                                {"refusing", FarEnd::Refusing},
                                                {"hangs-up", FarEnd::HangsUp}};

int RunService(const Options &options) {
  InstallStopHandlers();
  const std::string path = options.library.empty() ? tqv::tool::DefaultLibraryPath() : options.library;
  std::string error;
  std::optional<tqv::tool::HostLibrary> library = tqv::tool::HostLibrary::Load(path, error);
  if (!library) {
    std::cerr << "tqvfaxd: " << (path.empty() ? "cannot find the library; give --library" : error) << "\n";
    return 2;
  }
  std::error_code failed;
  std::filesystem::create_directories(options.spoolDir, failed);
  if (!std::filesystem::is_directory(options.spoolDir, failed)) {
    std::cerr << "tqvfaxd: cannot make the spool directory " << options.spoolDir << "\n";
    return 1;
  }
  const tqv::tool::EntryPoints &entries = library->Entries();
  if (entries.initialise(options.textDir.empty() ? 0 : 1, options.textDir.c_str()) != 0) {
    std::cerr << "tqvfaxd: S_Initialise failed; see CORVANTA.LOG and the event log\n";
    return 1;
  }
  LoopbackOptions line;
  line.stationId = options.answerId.empty() ? options.stationId : options.answerId;
  line.receiveDir = options.spoolDir;
  line.farEnd = kFarEnds.at(options.farEnd);
  line.wavFile = options.wavFile;
  LoopbackLine loopback(line);
  ServiceOptions service;
  service.spoolDir = options.spoolDir;
  service.stationId = options.stationId;
  service.dueJobsFlag = options.due ? 1 : 0;
  service.recognise = !options.noOcr;
  service.attachOcrText = options.attachOcrText;
  service.retries = options.retries;
  service.retryDelaySeconds = options.retryDelaySeconds;
  service.pictureDir = options.pictureDir;
  if (!service.pictureDir.empty()) std::filesystem::create_directories(service.pictureDir, failed);
  FaxService fax(entries, loopback, service, std::cout);
  std::cout << "start: " << path << " on line " << loopback.Port() << " as \"" << options.stationId << "\""
            << std::endl;
  ServiceCounts total;
  do {
    const ServiceCounts counts = fax.RunCycle(StopRequested);
    total.jobs += counts.jobs;
    total.delivered += counts.delivered;
    total.failed += counts.failed;
    total.jfax += counts.jfax;
    total.pending += counts.pending;
    total.received += counts.received;
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(options.intervalMs);
    while (!options.once && !StopRequested() && std::chrono::steady_clock::now() < end)
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
  } while (!options.once && !StopRequested());
  entries.shutdown();
  std::cout << "done: " << CountsSummary(total) << std::endl;
  return 0;
}

int RunPng(const Options &options) {
  std::vector<std::string> written;
  std::string error;
  const std::string prefix = options.prefix.empty()
                                 ? std::filesystem::path(options.image).replace_extension().string()
                                 : options.prefix;
  if (!WritePngPages(options.image, prefix, written, error)) {
    std::cerr << "tqvfaxd png: " << error << "\n";
    return 1;
  }
  for (const std::string &file : written)
    std::cout << file << "\n";
  return 0;
}

}  // namespace

int main(int argc, char **argv) {
  CLI::App app{"tqvfaxd: a fax service for Linux on the tqvspool library (spandsp, Ghostscript, Tesseract)."};
  app.set_version_flag("--version", "tqvfaxd 0.1");
  Options options;
  app.add_option("--library", options.library,
                 "The library to load (default: ../lib/libtqvspool.so beside tqvfaxd).");
  app.add_option("--text-dir", options.textDir, "Fax the text files of this directory as well.");
  app.add_option("--spool-dir", options.spoolDir, "The service's working directory.")->capture_default_str();
  app.add_option("--station-id", options.stationId, "Our fax station identifier (at most 20 characters).")
      ->capture_default_str()
      ->check(CLI::Validator(
          [](std::string &id) {
            return id.size() > kMaxStationId ? std::string("longer than 20 characters") : "";
          },
          "", "StationId"));
  app.add_option("--answer-id", options.answerId,
                 "The identifier of the loopback line's answering end (default: the station identifier).");
  app.add_option("--pictures", options.pictureDir,
                 "Write PNG pictures of every page sent and received here.");
  app.add_option("--wav", options.wavFile, "Record the loopback call's audio into this WAV file.");
  app.add_option("--far-end", options.farEnd, "How the loopback line's far end behaves.")
      ->check(CLI::IsMember({"fax", "busy", "silent", "refusing", "hangs-up"}))
      ->capture_default_str();
  app.add_flag("--due", options.due, "Ask for due jobs too (the due-jobs flag of S_Scan).");
  app.add_flag("--once", options.once, "Run one scan cycle, then stop.");
  app.add_flag("--no-ocr", options.noOcr, "Do not recognise the text of received faxes.");
  app.add_flag("--attach-ocr-text", options.attachOcrText,
               "Send the recognised text to the users along with the received fax.");
  app.add_option("--interval", options.intervalMs, "Pause between scan cycles in milliseconds.")
      ->check(CLI::Range(1, 86400000))
      ->capture_default_str();
  app.add_option("--retries", options.retries,
                 "Tries more for a call that reached no fax machine (busy, no answer).")
      ->check(CLI::Range(0, 100))
      ->capture_default_str();
  app.add_option("--retry-delay", options.retryDelaySeconds, "Seconds before such a call is tried again.")
      ->check(CLI::Range(1, 86400))
      ->capture_default_str();
  CLI::App *png = app.add_subcommand("png", "Write the pages of a fax image (TIFF) as PNG files.");
  png->add_option("image", options.image, "The fax image.")->required()->check(CLI::ExistingFile);
  png->add_option("--prefix", options.prefix,
                  "Names of the pages: PREFIX-1.png, ... (default: the image's name).");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError &error) {
    const int code = app.exit(error);
    return code == 0 ? 0 : 64;
  }
  return app.got_subcommand(png) ? RunPng(options) : RunService(options);
}
