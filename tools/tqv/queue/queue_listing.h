// The pending queue as a listing for people and scripts: every job file with what the library will
// make of it. A file that the library would skip is listed as damaged with the reason.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tqv::tool {

struct QueueEntry {
  std::string file{};    // the name in the directory
  std::string damage{};  // why the library would skip the file; empty for a sound job file
  std::string tag{};
  std::string sender{};
  std::string recipient{};
  std::string faxNumber{};
  std::int32_t scheduledTime = 0;  // 0 = at once
  bool skipQueue = false;
  bool early = false;
  std::vector<std::string> documents{};  // full paths, in order

  bool IsDamaged() const { return !damage.empty(); }
};

// Reads the job file at `path` (named `file` in the listing) with a shared open, which keeps the
// library from opening it exclusively only for the moment of one read.
QueueEntry ReadQueueEntry(std::string_view path, std::string file);

// Every "*.TQV" of the directory (any case), sorted by name without regard to case.
// nullopt when the directory does not exist.
std::optional<std::vector<QueueEntry>> ListQueue(std::string_view directory);

// The listing for people: a few lines per job file and a footer with the count.
std::string RenderQueueText(const std::vector<QueueEntry> &entries);

// A JSON array with one object per job file; a damaged one carries only "file" and "damaged".
std::string RenderQueueJson(const std::vector<QueueEntry> &entries);

}  // namespace tqv::tool
