// Places traffic items as their writers would. A file that cannot be placed ends the writer: a
// silent skip would make the checker's figures lie.
#include "tqv/traffic/traffic_writer.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "platform/file.h"

namespace tqv::tool {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

std::string ManifestPath(const TrafficPaths &paths, int writer) {
  return paths.traffic + "/manifest-" + std::to_string(writer) + ".txt";
}

// Items already in the writer's manifest: a second run goes on numbering after them.
int ItemsWritten(const std::string &manifest) {
  std::ifstream in(manifest);
  int lines = 0;
  for (std::string line; std::getline(in, line);)
    ++lines;
  return lines;
}

// In duration mode: what the next item is, by weight, with the malformed share.
TrafficKind PickKind(std::mt19937 &random, int malformedPercent) {
  static constexpr std::array<std::pair<TrafficKind, int>, 5> kWeights = {{{TrafficKind::Message, 55},
                                                                           {TrafficKind::TextFile, 15},
                                                                           {TrafficKind::Voicemail, 8},
                                                                           {TrafficKind::ReceivedFax, 15},
                                                                           {TrafficKind::AdminRequest, 7}}};
  int draw = std::uniform_int_distribution<int>(0, 99)(random);
  TrafficKind kind = TrafficKind::Message;
  for (const auto &[candidate, weight] : kWeights) {
    if (draw < weight) {
      kind = candidate;
      break;
    }
    draw -= weight;
  }
  const bool malformed = std::uniform_int_distribution<int>(0, 99)(random) < malformedPercent;
  if (!malformed) return kind;
  switch (kind) {
    case TrafficKind::Message:
      return TrafficKind::BadMessage;
    case TrafficKind::TextFile:
      return TrafficKind::BadTextFile;
    case TrafficKind::Voicemail:
      return TrafficKind::BadVoicemail;
    default:
      return kind;
  }
}

}  // namespace

bool PlaceHeldFile(const std::string &stagingDirectory, const TrafficFile &file, int holdMilliseconds,
                   std::string &error) {
  static int counter = 0;
  const std::string staged = stagingDirectory + "/" + file.name + "." + std::to_string(++counter);
  const std::string target = file.directory + "/" + file.name;
  std::optional<platform::File> held = platform::File::Open(
      staged, platform::FileAccess::Write, platform::FileSharing::None, platform::FileCreation::CreateNew);
  if (!held) {
    error = "cannot create " + staged;
    return false;
  }
  const std::string_view bytes = file.bytes;
  const std::size_t half = bytes.size() / 2;
  std::error_code failed;
  // Linked in only once held: a file created in place could be taken in the moment between its
  // creation and its lock, and deleted under its writer.
  bool placed = held->Write(bytes.substr(0, half));
  if (placed) fs::create_hard_link(staged, target, failed);
  placed = placed && !failed;
  fs::remove(staged, failed);
  if (!placed) {
    error = "cannot place " + target + (fs::exists(target) ? ": a file of that name exists" : "");
    return false;
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(holdMilliseconds));
  if (!held->Write(bytes.substr(half))) {
    error = "cannot write " + target;
    return false;
  }
  return true;
}

int RunWriter(const TrafficPaths &paths, const WriterPlan &plan, const std::atomic<bool> &stop) {
  std::mt19937 random(plan.seed * 7919u + static_cast<unsigned>(plan.writer));
  const TrafficDirectories directories{paths.gatewayOut, paths.textFiles, paths.voicemail, paths.receive};
  const std::string manifestPath = ManifestPath(paths, plan.writer);
  int sequence = ItemsWritten(manifestPath);
  std::ofstream manifest(manifestPath, std::ios::app);

  std::vector<TrafficKind> items;
  for (const auto &[kind, count] : plan.counts)
    items.insert(items.end(), static_cast<std::size_t>(count), kind);
  std::shuffle(items.begin(), items.end(), random);

  const bool timed = plan.seconds > 0;
  const double perSecond =
      timed ? plan.perSecond
            : (plan.spreadSeconds > 0 ? static_cast<double>(items.size()) / plan.spreadSeconds : 0);
  const Clock::time_point start = Clock::now();
  const auto deadline =
      start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(plan.seconds));
  std::uniform_int_distribution<int> hold(0, std::max(plan.holdMaxMilliseconds, 0));
  int written = 0;
  for (std::size_t next = 0; !stop && (timed ? Clock::now() < deadline : next < items.size()); ++next) {
    const TrafficKind kind = timed ? PickKind(random, plan.malformedPercent) : items[next];
    const TrafficItem item =
        MakeTrafficItem(kind, TrafficId(kind, plan.writer, sequence++), directories, random);
    for (const TrafficFile &file : item.files) {
      std::string error;
      if (!PlaceHeldFile(paths.staging, file, hold(random), error)) {
        std::cerr << "tqv traffic: writer " << plan.writer << ": " << error << "\n";
        return -1;
      }
    }
    manifest << ManifestLine(item.expected) << "\n" << std::flush;
    ++written;
    // Paced from the start, so a slow file does not slow the whole run down.
    if (perSecond > 0) {
      const auto due = start + std::chrono::duration_cast<Clock::duration>(
                                   std::chrono::duration<double>(written / perSecond));
      while (!stop && Clock::now() < due)
        std::this_thread::sleep_for(
            std::min<Clock::duration>(due - Clock::now(), std::chrono::milliseconds(100)));
    }
  }
  return written;
}

}  // namespace tqv::tool
