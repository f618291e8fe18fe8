// Throughput of gateway message files with one large attachment: extracting it with MessageReader
// and writing a message around it with MessageWriter, each next to a plain copy of the same bytes
// with the platform's copy. Prints figures; it judges nothing. The fixed cost of the message
// counter is shown apart, as it does not grow with the message.
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "config/service_state.h"
#include "config/settings_files.h"
#include "gateway/message_counter.h"
#include "gateway/message_reader.h"
#include "gateway/message_writer.h"
#include "platform/file_system.h"
#include "platform/platform_state.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

struct Options {
  std::size_t megabytes = 20;
  int rounds = 11;
};

void PrintUsage() {
  std::puts(
      "usage: bench_gateway_io [--size MB] [--rounds N]\n"
      "Reads a gateway message with an attachment of MB megabytes (default 20) and writes one back,\n"
      "N rounds (default 11), and prints the median throughput next to that of copying the same\n"
      "bytes with the platform's copy. The ratio is gateway time / copy time: lower is better.");
}

bool ParseOptions(int argc, char **argv, Options &options) {
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--help" || argument == "-h") {
      PrintUsage();
      std::exit(0);
    }
    if (i + 1 >= argc) return false;
    const int value = std::atoi(argv[++i]);
    if (value <= 0) return false;
    if (argument == "--size") {
      options.megabytes = static_cast<std::size_t>(value);
    } else if (argument == "--rounds") {
      options.rounds = value;
    } else {
      return false;
    }
  }
  return true;
}

// One timed run, in seconds; `prepare` runs untimed before it.
double TimedSeconds(const std::function<void()> &prepare, const std::function<bool()> &run) {
  prepare();
  const Clock::time_point start = Clock::now();
  if (!run()) {
    std::fprintf(stderr, "run failed\n");
    std::exit(1);
  }
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

std::string ReadWhole(const fs::path &path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

void Report(const char *what, double megabytes, const std::vector<double> &seconds,
            const std::vector<double> &copySeconds) {
  std::vector<double> ratios;
  for (std::size_t i = 0; i < seconds.size(); ++i)
    ratios.push_back(seconds[i] / copySeconds[i]);
  std::printf("%-34s %9.1f MB/s   copy %9.1f MB/s   ratio %.2f\n", what, megabytes / Median(seconds),
              megabytes / Median(copySeconds), Median(ratios));
}

}  // namespace

int main(int argc, char **argv) {
  Options options;
  if (!ParseOptions(argc, argv, options)) {
    PrintUsage();
    return 2;
  }

  std::string pattern = (fs::temp_directory_path() / "tqvbench.XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    std::perror("mkdtemp");
    return 1;
  }
  const fs::path root = pattern;
  const fs::path windows = root / "windows", product = root / "product", gatewayIn = root / "in";
  for (const fs::path &directory : {windows / "Corvanta", product, gatewayIn})
    fs::create_directories(directory);
  setenv("TQVSPOOL_WINDIR", windows.c_str(), 1);
  tqv::platform::ResetPlatformStateForTesting();
  std::ofstream(windows / "Corvanta" / "TQVMSERV.INI")
      << "[Corvanta]\r\nDirectory=" << product.string() << "\r\n";
  tqv::CurrentService().gatewayInDirectory = gatewayIn.string();

  const std::size_t size = options.megabytes * 1024 * 1024;
  const std::string attachment = (root / "scan.tif").string();
  {
    std::string bytes(size, '\0');
    std::mt19937 random(42);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    std::ofstream(attachment, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  const std::string message = (root / "message.TMP").string();
  const std::string target = (root / "target.out").string();
  const auto removeTarget = [&] { fs::remove(target); };
  const auto removeMessages = [&] {
    for (const fs::directory_entry &entry : fs::directory_iterator(gatewayIn))
      fs::remove(entry.path());
  };

  const auto writeMessage = [&] {
    tqv::MessageWriter writer;
    if (!writer.Create()) return false;
    writer.SetSender("bench@example.com");
    writer.AddRecipient("+49 30 1234");
    writer.SetSubject("Received fax");
    writer.AddBody("A fax arrived.");
    const bool attached = writer.AddAttachment(attachment);
    writer.Close();
    return attached;
  };
  const auto readMessage = [&] {
    tqv::MessageReader reader;
    if (!reader.Open(message)) return false;
    for (tqv::ReadCode code; (code = reader.ReadNext()) != tqv::ReadCode::End;) {
      if (code == tqv::ReadCode::Attachment) return reader.ExtractAttachment(target);
    }
    return false;
  };
  const auto copyAttachment = [&] { return tqv::platform::CopyFileTo(attachment, target, false); };

  // One message to read, written by the writer under test.
  removeMessages();
  if (!writeMessage()) return 1;
  fs::rename(fs::directory_iterator(gatewayIn)->path(), message);

  // The three runs of a round follow each other, so a busy machine slows all of them alike; the
  // ratio is taken within each round.
  std::vector<double> copySeconds, readSeconds, writeSeconds, counterSeconds;
  bool sameBytes = true;
  for (int round = 0; round < options.rounds; ++round) {
    copySeconds.push_back(TimedSeconds(removeTarget, copyAttachment));
    readSeconds.push_back(TimedSeconds(removeTarget, readMessage));
    sameBytes = sameBytes && ReadWhole(target) == ReadWhole(attachment);
    writeSeconds.push_back(TimedSeconds(removeMessages, writeMessage));
    counterSeconds.push_back(TimedSeconds([] {}, [] { return tqv::NextMessageId() >= 0; }));
  }

  const double megabytes = static_cast<double>(size) / (1024.0 * 1024.0);
  std::printf("attachment %zu MB, median of %d rounds, ratio = gateway time / copy time in the same round\n",
              options.megabytes, options.rounds);
  Report("read message, extract attachment", megabytes, readSeconds, copySeconds);
  Report("write message with attachment", megabytes, writeSeconds, copySeconds);
  std::printf("of which the message counter (SGW_ID.INI read and rewritten): %.2f ms per message\n",
              Median(counterSeconds) * 1000.0);
  std::printf("extracted bytes equal the attachment: %s\n", sameBytes ? "yes" : "NO");

  std::error_code ignored;
  fs::remove_all(root, ignored);
  return sameBytes ? 0 : 1;
}
