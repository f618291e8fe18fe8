// Reading and presenting the pending queue. Reading never changes a job file; the same checks as
// the library's queue decide what counts as damaged, so the listing predicts what the host gets.
#include "tqv/queue/queue_listing.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "common/job_record.h"
#include "common/path_helpers.h"
#include "outgoing/pending_queue.h"
#include "platform/file.h"
#include "platform/file_system.h"
#include "tqv/shared/display_text.h"
#include "tqv/shared/json_writer.h"

namespace tqv::tool {

namespace {

// Tag bytes as readable text: a damaged tag may hold anything.
std::string Printable(std::string_view bytes) {
  std::string out;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte < 0x7F && c != '\\') {
      out += c;
    } else {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\x%02X", byte);
      out += escape;
    }
  }
  return out;
}

// The library hands out only a job whose JobFile names the file it was read from. A directory given
// in another spelling than the library's (relative, through a link) is the same one if the system
// says the two paths lead to one file.
bool NamesItself(std::string_view jobFile, std::string_view path) {
  if (NamesJobFile(jobFile, path)) return true;
  const auto native = [](std::string_view windowsPath) {
    std::string text(windowsPath);
    if (std::filesystem::path::preferred_separator == '/') std::replace(text.begin(), text.end(), '\\', '/');
    return text;
  };
  std::error_code error;
  return !jobFile.empty() && std::filesystem::equivalent(native(jobFile), native(path), error);
}

std::string ScheduleText(std::int32_t scheduledTime) {
  return scheduledTime == 0 ? "now" : LocalMinuteText(scheduledTime);
}

}  // namespace

QueueEntry ReadQueueEntry(std::string_view path, std::string file) {
  QueueEntry entry;
  entry.file = std::move(file);
  std::optional<platform::File> handle = platform::File::OpenShared(path);
  if (!handle) {
    entry.damage = "cannot be opened (in use or unreadable)";
    return entry;
  }
  const std::optional<std::string> bytes = handle->ReadAll(kJobRecordSize);
  handle.reset();
  if (!bytes) {
    entry.damage = "read error";
    return entry;
  }
  if (bytes->size() < kJobRecordSize) {
    entry.damage =
        "short: " + std::to_string(bytes->size()) + " of " + std::to_string(kJobRecordSize) + " bytes";
    return entry;
  }
  const JobRecord record = JobRecord::CopyOf(bytes->data());
  const JobRecordView job = record.View();
  const std::string_view tag = job.Raw(job::Tag);
  if (tag != kFaxJobTag && tag != kJfaxJobTag) {
    entry.damage = "unknown tag \"" + Printable(tag) + "\"";
    return entry;
  }
  if (job.Number(job::RecordSize) != kJobRecordSize) {
    entry.damage = "record size " + std::to_string(job.Number(job::RecordSize)) + ", not " +
                   std::to_string(kJobRecordSize);
    return entry;
  }
  const std::string jobFile = job.Text(job::JobFile);
  if (!NamesItself(jobFile, path)) {
    // Shown raw like the other record texts: each rendering makes it safe for its reader.
    entry.damage = "its record names \"" + jobFile + "\" as its job file, not this file";
    return entry;
  }
  entry.tag = std::string(tag);
  entry.sender = job.Text(job::SenderEmail);
  entry.recipient = job.Text(job::RecipientName);
  entry.faxNumber = job.Text(job::FaxNumber);
  entry.scheduledTime = job.Number(job::ScheduledTime);
  entry.skipQueue = job.Number(job::SkipQueue) != 0;
  entry.early = IsEarlyJob(job);
  for (int i = 0; i < job.UsableFileCount(); ++i)
    entry.documents.push_back(job.Text(job::File(i)));
  return entry;
}

std::optional<std::vector<QueueEntry>> ListQueue(std::string_view directory) {
  if (!DirectoryExists(directory)) return std::nullopt;
  std::string prefix(directory);
  AppendBackslash(prefix);
  std::vector<QueueEntry> entries;
  for (const platform::EntryInfo &found : platform::FindEntries(prefix + "*.TQV"))
    entries.push_back(ReadQueueEntry(prefix + found.name, found.name));
  return entries;
}

std::string RenderQueueText(const std::vector<QueueEntry> &entries) {
  std::string out;
  std::size_t damaged = 0;
  for (const QueueEntry &entry : entries) {
    out += entry.file;
    if (entry.IsDamaged()) {
      ++damaged;
      out += "  damaged: " + DisplayText(entry.damage) + "\n";
      continue;
    }
    out += "  " + entry.tag + "  " + ScheduleText(entry.scheduledTime);
    if (entry.skipQueue) out += "  skip-queue";
    if (entry.early) out += "  early";
    out += "\n    from " + DisplayText(entry.sender) + " to " + DisplayText(entry.recipient) + ", fax " +
           DisplayText(entry.faxNumber) + "\n";
    out += "    " + Counted(entry.documents.size(), "document");
    for (std::size_t i = 0; i < entry.documents.size(); ++i)
      out += (i == 0 ? ": " : ", ") + DisplayText(FileNameOf(entry.documents[i]));
    out += "\n";
  }
  out += "-- " + Counted(entries.size(), "job file");
  if (damaged > 0) out += ", " + std::to_string(damaged) + " damaged";
  out += "\n";
  return out;
}

std::string RenderQueueJson(const std::vector<QueueEntry> &entries) {
  JsonWriter json;
  json.BeginArray();
  for (const QueueEntry &entry : entries) {
    json.BeginObject();
    json.Key("file");
    json.String(entry.file);
    json.Key("damaged");
    if (entry.IsDamaged()) {
      json.String(entry.damage);
      json.EndObject();
      continue;
    }
    json.Null();
    json.Key("tag");
    json.String(entry.tag);
    json.Key("sender");
    json.String(entry.sender);
    json.Key("recipient");
    json.String(entry.recipient);
    json.Key("faxNumber");
    json.String(entry.faxNumber);
    json.Key("scheduledTime");
    json.Number(entry.scheduledTime);
    json.Key("schedule");
    json.String(ScheduleText(entry.scheduledTime));
    json.Key("skipQueue");
    json.Bool(entry.skipQueue);
    json.Key("early");
    json.Bool(entry.early);
    json.Key("documents");
    json.BeginArray();
    for (const std::string &document : entry.documents)
      json.String(document);
    json.EndArray();
    json.EndObject();
  }
  json.EndArray();
  return json.Text() + "\n";
}

}  // namespace tqv::tool
