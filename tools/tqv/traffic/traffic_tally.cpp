// Collects and accounts for the outputs of generated traffic. A file that cannot be read whole is
// counted as damaged, never skipped: a lost or cut output must show in the figures.
#include "tqv/traffic/traffic_tally.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <sstream>
#include <system_error>

#include "platform/file.h"
#include "tqv/shared/mail_gateway_file.h"
#include "tqv/traffic/traffic_items.h"

namespace tqv::tool {

namespace {

namespace fs = std::filesystem;

// Outputs that carry no identifier; they are counted over all items.
const std::set<std::string> kUnnamedOutputs = {"admin", "result-extra"};
constexpr std::string_view kNoId = "-";

struct Output {
  std::string kind;
  std::string id{kNoId};
  int routed = 0;
  std::string problem{};
};

std::string CollectedPath(const TrafficPaths &paths) {
  return paths.traffic + "/collected.txt";
}

bool EndsWith(std::string_view text, std::string_view end) {
  if (text.size() < end.size()) return false;
  return std::equal(end.begin(), end.end(), text.end() - static_cast<std::ptrdiff_t>(end.size()),
                    [](char a, char b) { return std::toupper(static_cast<unsigned char>(a)) == b; });
}

// A text that must come back whole: its check line must match and its documents be those declared.
std::string CheckText(std::string_view bytes, const std::string &id,
                      const std::vector<GatewayAttachment> &documents) {
  const std::optional<CheckedTextFound> found = FindCheckedText(bytes);
  if (!found) return "its text is missing";
  if (!found->intact) return "its text was cut or changed";
  if (found->id != id) return "it carries the text of " + found->id;
  for (const GatewayAttachment &document : documents)
    if (std::find(found->documents.begin(), found->documents.end(), DocumentDigest(document.bytes)) ==
        found->documents.end())
      return "document " + document.name + " was changed";
  return {};
}

Output ClassifyMail(const GatewayMail &mail) {
  if (mail.sender == "FAXADMIN") return {"admin"};
  if (mail.sender == "Corvanta") return {"voicemail", FindTrafficId(mail.body, TrafficKind::Voicemail)};
  if (mail.faxStatus == 4 && !mail.attachments.empty()) {
    Output fax{"fax", FindTrafficId(std::string_view(mail.attachments.front().bytes).substr(0, 32),
                                    TrafficKind::ReceivedFax)};
    fax.routed = static_cast<int>(mail.recipients.size());
    return fax;
  }
  if (mail.customString.empty())
    return {"unknown", std::string(kNoId), 0, "from " + mail.sender + ": " + mail.subject};
  if (mail.recipients.front().find("@jfax.invalid") != std::string::npos) return {"jfax", mail.customString};
  if (mail.faxStatus == 6) return {"error", mail.customString};
  return {"report", mail.customString, 0, CheckText(mail.body, mail.customString, mail.attachments)};
}

Output ClassifyTextResult(const std::string &name, std::string_view bytes) {
  const std::optional<CheckedTextFound> found = FindCheckedText(bytes);
  if (EndsWith(name, ".ERR")) return {"error", found ? found->id : std::string(kNoId)};
  if (!found) return {"result-extra"};
  return {"result", found->id, 0, found->intact ? std::string() : "its text was cut or changed"};
}

void Record(std::ofstream &list, const Output &output) {
  list << output.kind << " " << (output.id.empty() ? std::string(kNoId) : output.id) << " " << output.routed
       << " " << (output.problem.empty() ? "ok" : output.problem) << "\n";
}

std::vector<fs::path> FilesOf(const std::string &directory) {
  std::vector<fs::path> files;
  std::error_code failed;
  for (const auto &entry : fs::directory_iterator(directory, failed))
    if (entry.is_regular_file(failed)) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

int CollectGatewayIn(const TrafficPaths &paths, std::ofstream &list) {
  // Collectors may run side by side (a follower and a final check); each extracts into its own.
  const std::string work = paths.traffic + "/collect-" + std::to_string(std::random_device{}());
  std::error_code failed;
  fs::create_directories(work, failed);
  int taken = 0;
  for (const fs::path &file : FilesOf(paths.gatewayIn)) {
    // An empty file may be one the library has created and not yet locked (see below).
    if (fs::file_size(file, failed) == 0 || failed) continue;
    bool busy = false;
    std::string error;
    const std::optional<GatewayMail> mail = ReadGatewayFile(file.string(), work, busy, error);
    if (busy) continue;
    Record(list, mail ? ClassifyMail(*mail)
                      : Output{"damaged", std::string(kNoId), 0, file.filename().string() + ": " + error});
    fs::remove(file, failed);
    ++taken;
  }
  fs::remove_all(work, failed);
  return taken;
}

int CollectTextResults(const TrafficPaths &paths, std::ofstream &list) {
  int taken = 0;
  for (const fs::path &file : FilesOf(paths.textFiles)) {
    const std::string name = file.filename().string();
    std::error_code failed;
    if (!EndsWith(name, ".OK") && !EndsWith(name, ".ERR")) continue;
    // The library creates its files in place and locks them a moment later: a reader that took
    // the empty file then would make the library's own open fail, and the result would be lost.
    if (fs::file_size(file, failed) == 0 || failed) continue;
    std::optional<std::string> bytes;
    if (std::optional<platform::File> held = platform::File::OpenExclusive(file.string()))
      bytes = held->ReadAll();
    if (!bytes) continue;
    Record(list, ClassifyTextResult(name, *bytes));
    fs::remove(file, failed);
    ++taken;
  }
  return taken;
}

void ListLeftovers(const TrafficPaths &paths, std::vector<std::string> &leftovers) {
  const auto add = [&](const std::string &directory, std::string_view what, auto wanted) {
    for (const fs::path &file : FilesOf(directory))
      if (wanted(file.filename().string())) leftovers.push_back(std::string(what) + " " + file.string());
  };
  const auto all = [](const std::string &) { return true; };
  add(paths.gatewayOut, "message", all);
  add(paths.gatewayIn, "unread output", all);
  add(paths.pending, "job file", all);
  add(paths.work, "work file", all);
  add(paths.receive, "received fax", all);
  add(paths.staging, "unplaced file", all);
  add(paths.textFiles, "text file",
      [](const std::string &name) { return EndsWith(name, ".TXT") || EndsWith(name, ".TMP"); });
  add(paths.voicemail, "voicemail description",
      [](const std::string &name) { return EndsWith(name, ".ID"); });
}

}  // namespace

int CollectTrafficOutputs(const TrafficPaths &paths) {
  std::ofstream list(CollectedPath(paths), std::ios::app);
  const int taken = CollectGatewayIn(paths, list) + CollectTextResults(paths, list);
  list.flush();
  return taken;
}

TrafficTally TallyTraffic(const TrafficPaths &paths) {
  TrafficTally tally;
  // Per identifier (or "-"), per output kind: expected and collected counts.
  std::map<std::string, std::map<std::string, std::pair<int, int>>> account;
  for (const fs::path &file : FilesOf(paths.traffic)) {
    if (file.filename().string().rfind("manifest-", 0) != 0) continue;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
      const std::optional<TrafficExpectation> item = ParseManifestLine(line);
      if (!item) continue;
      ++tally.itemsIn[std::string(KindName(item->kind))];
      tally.expectedJobs += item->jobs;
      tally.expectedErrorEvents += item->errorEvents;
      for (const auto &[output, count] : item->outputs) {
        const std::string id = kUnnamedOutputs.count(output) ? std::string(kNoId) : item->id;
        account[id][output].first += count;
        tally.expected[output] += count;
      }
    }
  }
  std::ifstream collected(CollectedPath(paths));
  for (std::string line; std::getline(collected, line);) {
    std::istringstream fields(line);
    std::string kind, id, problem;
    int routed = 0;
    fields >> kind >> id >> routed >> std::ws;
    std::getline(fields, problem);
    ++tally.collected[kind];
    tally.faxesRouted += routed;
    if (problem != "ok") tally.damaged.push_back(kind + " " + id + ": " + problem);
    if (kind != "damaged") ++account[kUnnamedOutputs.count(kind) ? std::string(kNoId) : id][kind].second;
  }
  for (const auto &[id, outputs] : account)
    for (const auto &[output, counts] : outputs) {
      if (counts.first == counts.second) continue;
      const std::string line = id + " " + output + ": expected " + std::to_string(counts.first) + ", got " +
                               std::to_string(counts.second);
      (counts.second < counts.first ? tally.missing : tally.surplus).push_back(line);
    }
  std::ifstream events(paths.eventLog);
  for (std::string line; std::getline(events, line);)
    if (line.rfind("1\t", 0) == 0) ++tally.errorEvents;
  ListLeftovers(paths, tally.leftovers);
  return tally;
}

bool TrafficAccounted(const TrafficTally &tally, bool requireEmptyDirectories) {
  return tally.missing.empty() && tally.surplus.empty() && tally.damaged.empty() &&
         tally.errorEvents == tally.expectedErrorEvents &&
         (!requireEmptyDirectories || tally.leftovers.empty());
}

std::string TrafficSummary(const TrafficTally &tally) {
  std::ostringstream out;
  const auto count = [](const std::map<std::string, int> &counts, const std::string &key) {
    const auto found = counts.find(key);
    return found == counts.end() ? 0 : found->second;
  };
  const auto pair = [&](const std::string &key) {
    return std::to_string(count(tally.collected, key)) + "/" + std::to_string(count(tally.expected, key));
  };
  out << "items in:";
  for (const auto &[kind, number] : tally.itemsIn)
    out << " " << kind << " " << number;
  out << "\njobs expected: " << tally.expectedJobs << "\n"
      << "delivery reports: " << pair("report") << ", JFAX hand-offs: " << pair("jfax")
      << ", text results: " << pair("result") << " with text + " << pair("result-extra") << " without\n"
      << "received faxes delivered: " << pair("fax") << ", routed to " << tally.faxesRouted << " users\n"
      << "voicemail delivered: " << pair("voicemail") << ", administration replies: " << pair("admin") << "\n"
      << "errors: conversion error reports and error files " << pair("error") << ", error events "
      << tally.errorEvents << "/" << tally.expectedErrorEvents << ", damaged or changed outputs "
      << tally.damaged.size() << "\n"
      << "lost: " << tally.missing.size() << ", unexpected: " << tally.surplus.size()
      << ", files left behind: " << tally.leftovers.size() << "\n";
  const auto list = [&out](const char *title, const std::vector<std::string> &lines) {
    for (std::size_t i = 0; i < lines.size() && i < 20; ++i)
      out << "  " << title << ": " << lines[i] << "\n";
    if (lines.size() > 20) out << "  " << title << ": ... " << lines.size() - 20 << " more\n";
  };
  list("lost", tally.missing);
  list("unexpected", tally.surplus);
  list("damaged", tally.damaged);
  list("left", tally.leftovers);
  return out.str();
}

}  // namespace tqv::tool
