// Throughput of message conversion: N gateway messages, each to R recipients with A attachments of
// S bytes, converted by the gateway-out pass into job files, next to `cp` copying the same bytes
// (each attachment 1 + R times: once extracted, once per job). Then the scaling of one message
// with many recipients. Prints figures; it judges nothing.
#include <stdlib.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "config/service_state.h"
#include "host/entry_points.h"
#include "outgoing/message_conversion.h"
#include "outgoing/scan_passes.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

struct Load {
  int messages = 200;
  int recipients = 5;
  int attachments = 3;
  std::size_t bytes = 200 * 1024;
};

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void WriteBytes(const fs::path &path, const std::string &bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// A sandbox installation with one user who may fax and whose messages need no cover page.
class Sandbox {
 public:
  explicit Sandbox(const fs::path &root) : root_(root) {
    for (const fs::path &directory : {Windows() / "Corvanta", Product(), GatewayIn(), GatewayOut()})
      fs::create_directories(directory);
    setenv("TQVSPOOL_WINDIR", Windows().c_str(), 1);
    setenv("TQVSPOOL_EVENTLOG", (root / "events.log").c_str(), 1);
    WriteBytes(Windows() / "Corvanta" / "TQVMSERV.INI",
               "[Corvanta]\r\nDirectory=" + Product().string() + "\r\n");
    WriteBytes(Product() / "tqvconfg.ini", "[Directories]\r\nGatewayIn=" + GatewayIn().string() +
                                               "\r\nGatewayOut=" + GatewayOut().string() +
                                               "\r\nCoverDir=" + (Product() / "COVER").string() +
                                               "\r\nVoicemail=" + (Product() / "VOICE").string() + "\r\n");
    WriteBytes(Product() / "tqstring.ini", "[English]\r\n");
    WriteBytes(
        Product() / "tqvadmin.ini",
        "[Recipient List]\r\nbench@example.com=Bench\r\n[Recipients Properties]\r\nbench@example.com=1\r\n");
  }
  fs::path Windows() const { return root_ / "windows"; }
  fs::path Product() const { return root_ / "product"; }
  fs::path GatewayIn() const { return root_ / "gw" / "in"; }
  fs::path GatewayOut() const { return root_ / "gw" / "out"; }
  const fs::path &Root() const { return root_; }

 private:
  fs::path root_;
};

// One message with `load.recipients` recipients (the 1024th, which no header may add, through an
// option line) and `load.attachments` documents.
std::string MessageBytes(const Load &load, const std::string &document) {
  std::string bytes = "MAIL FROM:bench@example.com\r\n";
  const int headerRecipients = std::min(load.recipients, 1023);
  for (int i = 0; i < headerRecipients; ++i)
    bytes += "RCPT TO:0711 555 " + std::to_string(1000 + i) + "@fax\r\n";
  bytes += "Subject:Benchmark\r\n";
  std::string body;
  for (int i = headerRecipients; i < load.recipients; ++i)
    body += "::Extra,0711 556 " + std::to_string(i) + "\r\n";
  if (!body.empty())
    bytes += "----beginbody:" + std::to_string(body.size()) + "\r\n" + body + "\r\n----endbody\r\n";
  for (int i = 0; i < load.attachments; ++i)
    bytes += "----beginattach:doc" + std::to_string(i) + ".pdf:" + std::to_string(document.size()) + "\r\n" +
             document + "\r\n----endattach\r\n";
  return bytes;
}

// Every run writes into directories of its own and nothing is deleted until the end: a file system
// without a journal (ext4 here) skips inodes freed in the last minutes when it makes a file, so
// mass deletions between runs would slow the runs after them, and not evenly.
fs::path FreshDirectory(const fs::path &root, const std::string &what) {
  static int serial = 0;
  const fs::path directory = root / "runs" / (what + std::to_string(serial++));
  fs::create_directories(directory);
  return directory;
}

// Seconds to convert `load.messages` messages; checks that every job was made.
double ConvertSeconds(const Sandbox &sandbox, const Load &load, const std::string &document) {
  const fs::path pending = FreshDirectory(sandbox.Root(), "pending");
  tqv::CurrentService().pendingDirectory = pending.string();
  tqv::CurrentService().workDirectory = FreshDirectory(sandbox.Root(), "work").string();
  const std::string message = MessageBytes(load, document);
  for (int i = 0; i < load.messages; ++i) {
    char name[16];
    std::snprintf(name, sizeof name, "%08X.MSG", i);
    WriteBytes(sandbox.GatewayOut() / name, message);
  }
  const Clock::time_point start = Clock::now();
  tqv::RunGatewayOutPass(sandbox.GatewayOut().string(),
                         [](const std::string &path) { tqv::ConvertMessage(path); });
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();

  const auto jobs =
      std::count_if(fs::directory_iterator(pending), fs::directory_iterator(),
                    [](const fs::directory_entry &e) { return e.path().extension() == ".TQV"; });
  if (jobs != static_cast<long>(load.messages) * load.recipients) {
    std::fprintf(stderr, "bench_convert: %ld jobs made, %ld expected\n", static_cast<long>(jobs),
                 static_cast<long>(load.messages) * load.recipients);
    std::exit(1);
  }
  return seconds;
}

// Seconds for `cp` to copy the same documents: once into a work directory, once per recipient.
double CopySeconds(const fs::path &root, const Load &load, const std::string &document) {
  const fs::path sources = FreshDirectory(root, "cp-sources");
  std::string names;
  for (int i = 0; i < load.messages * load.attachments; ++i) {
    const fs::path path = sources / ("doc" + std::to_string(i) + ".pdf");
    WriteBytes(path, document);
    names += " '" + path.string() + "'";
  }
  std::vector<fs::path> targets;
  for (int copy = 0; copy <= load.recipients; ++copy)
    targets.push_back(FreshDirectory(root, "cp-target"));
  const Clock::time_point start = Clock::now();
  for (const fs::path &target : targets) {
    const std::string command = "cp" + names + " '" + target.string() + "'";
    if (std::system(command.c_str()) != 0) {
      std::fprintf(stderr, "bench_convert: cp failed\n");
      std::exit(1);
    }
  }
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  for (const fs::path &target : targets)
    fs::remove_all(target);
  return seconds;
}

}  // namespace

int main(int argc, char **argv) {
  CLI::App app{
      "Converts N gateway messages (R recipients, A attachments of S bytes each) with the gateway-out pass "
      "and\n"
      "prints the time next to `cp` copying the same bytes (1 + R copies of each attachment); then the time "
      "of\n"
      "one message to 1024 recipients with 15 attachments against the same to 128 recipients."};
  Load load;
  int rounds = 5;
  std::size_t scalingBytes = 4096;
  app.add_option("--messages", load.messages, "Messages per round (N).")->check(CLI::Range(1, 100000));
  app.add_option("--recipients", load.recipients, "Recipients per message (R).")->check(CLI::Range(1, 1024));
  app.add_option("--attachments", load.attachments, "Attachments per message (A).")->check(CLI::Range(0, 15));
  app.add_option("--size", load.bytes, "Bytes per attachment (S).")->check(CLI::Range(1, 64 * 1024 * 1024));
  app.add_option("--rounds", rounds, "Rounds; the median is printed.")->check(CLI::Range(1, 1000));
  app.add_option("--scaling-size", scalingBytes, "Bytes per attachment in the scaling case.")
      ->check(CLI::Range(1, 1024 * 1024));
  CLI11_PARSE(app, argc, argv);

  std::string pattern = (fs::temp_directory_path() / "tqvbench.XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    std::perror("bench_convert: mkdtemp");
    return 1;
  }
  const fs::path root = pattern;
  const Sandbox sandbox(root);
  if (tqv::host::Initialise(0, "") != 0) {
    std::fprintf(stderr, "bench_convert: the library did not start in the sandbox %s\n", root.c_str());
    return 1;
  }
  std::mt19937 random(42);
  std::string document(load.bytes, '\0');
  std::generate(document.begin(), document.end(), [&] { return static_cast<char>(random()); });

  std::vector<double> convert, copy, ratios;
  for (int round = 0; round < rounds; ++round) {
    std::fprintf(stderr, "\rround %d of %d", round + 1, rounds);
    convert.push_back(ConvertSeconds(sandbox, load, document));
    copy.push_back(CopySeconds(root, load, document));
    ratios.push_back(convert.back() / copy.back());
  }
  std::fprintf(stderr, "\r");
  std::printf("%d messages x %d recipients x %d attachments of %zu bytes, median of %d rounds\n",
              load.messages, load.recipients, load.attachments, load.bytes, rounds);
  std::printf("  conversion %8.3f s  (%.0f messages/s)   cp %8.3f s   ratio %.2f\n", Median(convert),
              load.messages / Median(convert), Median(copy), Median(ratios));

  const std::string small(scalingBytes, 'x');
  std::vector<double> large, smallTimes;
  for (int round = 0; round < rounds; ++round) {
    large.push_back(ConvertSeconds(sandbox, {1, 1024, 15, scalingBytes}, small));
    smallTimes.push_back(ConvertSeconds(sandbox, {1, 128, 15, scalingBytes}, small));
  }
  std::printf(
      "one message x 15 attachments of %zu bytes: 1024 recipients %.3f s, 128 recipients %.3f s, "
      "t(1024)/t(128) %.2f (linear: 8)\n",
      scalingBytes, Median(large), Median(smallTimes), Median(large) / Median(smallTimes));

  std::fprintf(stderr, "removing the sandbox %s\n", root.c_str());
  std::error_code ignored;
  fs::remove_all(root, ignored);
  return 0;
}
