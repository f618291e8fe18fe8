// Shared steps of job making. Nothing here fails loudly: a job file that cannot be created is a
// result the caller acts on.
#include "outgoing/job_building.h"

#include <cstdint>

#include "common/file_extension.h"
#include "common/job_record.h"
#include "common/path_helpers.h"
#include "common/text_limits.h"
#include "common/unique_name.h"
#include "config/message_strings.h"
#include "config/service_state.h"
#include "config/settings_files.h"
#include "config/string_formatting.h"
#include "outgoing/dial_strings.h"
#include "outgoing/option_lines.h"
#include "platform/file_system.h"

namespace tqv {

namespace {

// The dial string and JFAX address are built in FaxNumber's 96 bytes less one.
constexpr std::size_t kDialRoom = 95;
// The cover directory keeps room for "\TXTTEMPL.RTF" in TextTemplateFile.
constexpr std::size_t kCoverDirectoryForTemplate = 249;
constexpr std::string_view kTextTemplateName = "TXTTEMPL.RTF";
// Only names of the last moments can come from the clock again, so a few hundred are plenty.
constexpr std::size_t kFailedCopyNamesKept = 256;

// Process-wide: the names of copies that jobs name but that could not be made.
std::set<std::string> &FailedCopyNames() {
  static std::set<std::string> names;
  return names;
}

}  // namespace

std::string WorkFilePath(std::string_view name) {
  std::string path = CurrentService().workDirectory;
  CutText(path, kMaxPath);
  AppendBackslash(path);
  path += name;
  return path;
}

std::optional<platform::File> CreateJobFile(std::string &path) {
  path = MakeUniqueName(CurrentService().pendingDirectory, kJobFileExtension);
  return platform::File::CreateExclusiveFresh(path);
}

std::string CopyForJob(std::string_view source, std::string_view extension, std::set<std::string> &named,
                       bool lastUse) {
  std::set<std::string> &failed = FailedCopyNames();
  named.insert(failed.begin(), failed.end());
  const std::string copy =
      MakeUniqueName(CurrentService().pendingDirectory, DocumentCopyExtension(extension), &named);
  named.insert(copy);
  if (lastUse && platform::MoveFileTo(source, copy)) return copy;
  if (!platform::CopyFileTo(source, copy, true)) {
    if (failed.size() >= kFailedCopyNamesKept) failed.clear();
    failed.insert(copy);
  }
  return copy;
}

std::optional<std::string> PendingLimitError(std::size_t jobs, const std::vector<std::string> &files) {
  const std::uint64_t limit = GetMaxQueuedPerMessage() * kQueuedLimitUnit;
  if (limit == 0 || jobs == 0) return std::nullopt;
  // Every job has its job file; what is left of the limit is shared out over the copies.
  std::uint64_t perJob = kJobRecordSize;
  std::vector<std::uint64_t> sizes;
  for (const std::string &file : files) {
    const std::optional<platform::EntryInfo> info = platform::GetEntryInfo(file);
    sizes.push_back(info && !info->isDirectory ? info->size : 0);
    perJob += sizes.back();
  }
  if (perJob <= limit / jobs) return std::nullopt;

  if (perJob <= limit) {
    return FormatWithValue(GetString(kStringTooManyRecipients), static_cast<std::int64_t>(limit / perJob),
                           kMaxErrorText);
  }
  // Not even one job fits: the sender is told how many of the files would.
  std::size_t fitting = 0;
  for (std::uint64_t used = kJobRecordSize; fitting < sizes.size() && used + sizes[fitting] <= limit;
       ++fitting)
    used += sizes[fitting];
  return FormatWithValue(GetString(kStringTooManyDocuments), static_cast<std::int64_t>(fitting),
                         kMaxErrorText);
}

bool FinishJobFile(std::optional<platform::File> &file, std::string_view path, const JobRecord &record) {
  const bool written = file->Write(record.Bytes());
  file.reset();
  if (written) return true;
  platform::RemoveFile(path);
  const JobRecordView job = record.View();
  if (!job.Text(job::MessageTextFile).empty()) platform::RemoveFile(job.Text(job::MessageTextFile));
  for (int i = 0; i < job.UsableFileCount(); ++i)
    platform::RemoveFile(job.Text(job::File(i)));
  return false;
}

std::string_view AddressJob(std::string &number, std::optional<std::string_view> forcedTag) {
  const ServiceState &service = CurrentService();
  const std::string_view tag = forcedTag                                           ? *forcedTag
                               : IsJfaxNumber(number, service.internationalPrefix) ? kJfaxJobTag
                                                                                   : kFaxJobTag;
  if (tag == kJfaxJobTag) {
    MakeJfaxAddress(number, service.internationalPrefix, kDialRoom);
  } else {
    MakeDialString(number, kDialRoom);
  }
  return tag;
}

std::string TextTemplatePath() {
  std::string path = CurrentService().coverDirectory;
  CutText(path, kCoverDirectoryForTemplate);
  AppendBackslash(path);
  path += kTextTemplateName;
  return path;
}

}  // namespace tqv
