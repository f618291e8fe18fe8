// Text-file conversion. The source is removed exactly once, at the end, whatever happened: only
// when its error file could not be written does it stay, so that its text is not lost.
#include "outgoing/text_file_conversion.h"

#include <set>
#include <string>
#include <vector>

#include "common/file_extension.h"
#include "common/job_record.h"
#include "common/path_helpers.h"
#include "common/text_limits.h"
#include "common/unique_name.h"
#include "config/message_strings.h"
#include "config/service_state.h"
#include "diag/log_message.h"
#include "outgoing/body_splitting.h"
#include "outgoing/job_building.h"
#include "outgoing/message_conversion.h"
#include "outgoing/option_lines.h"
#include "platform/event_log.h"
#include "platform/file.h"
#include "platform/file_system.h"
#include "reports/text_job_files.h"

namespace tqv {

namespace {

// Told when a text file names no recipient; fetched with room for 510 characters.
constexpr int kStringNoRecipient = 428;
constexpr std::size_t kNoRecipientSize = 511;
// CustomString carries the source path only when all of it fits.
constexpr std::size_t kCustomStringPathLimit = 254;
constexpr std::string_view kDefaultTextExtension = "TXT";

void RemoveIfPresent(std::string_view path) {
  if (FileExists(path)) platform::RemoveFile(path);
}

// One job to `recipient` with a copy of the text, and of the saved attachment an option named.
// `copies` holds every copy a job names, made or not, so that no two jobs name the same file.
bool WriteTextJob(std::string_view source, const RecipientEntry &recipient, const FaxOptions &options,
                  std::string_view messageTextPath, const AttachmentTable &attachments,
                  std::set<std::string> &copies) {
  std::string jobPath;
  auto jobFile = CreateJobFile(jobPath);
  if (!jobFile) return false;

  JobRecord record = JobRecord::WithTag(kFaxJobTag);
  JobRecordView job = record.View();
  job.SetText(job::JobFile, jobPath);
  job.SetNumber(job::Status, kStatusCreated);
  job.SetNumber(job::FineResolution, options.fineResolution);
  job.SetNumber(job::ScheduledTime, options.sendTime);
  if (options.billingNumber > 0) job.SetText(job::BillingCode, std::to_string(options.billingNumber));
  job.SetText(job::SenderEmail, kTextFileSender);
  job.SetText(job::SenderName, kTextFileSender);
  job.SetText(job::RecipientName, recipient.name);
  job.SetText(job::RecipientNumber, recipient.address);
  job.SetText(job::Party(job::RecipientParty, PartyField::LastName), recipient.name);
  job.SetText(job::Party(job::RecipientParty, PartyField::Company), recipient.company);
  job.SetText(job::Party(job::RecipientParty, PartyField::FaxNo), recipient.address);

  std::string number = recipient.address;
  CutText(number, job::FaxNumber.MaxChars());
  const std::string_view tag = AddressJob(number);
  job.SetText(job::FaxNumber, number);
  if (source.size() <= kCustomStringPathLimit) job.SetText(job::CustomString, source);

  job.SetText(job::File(0),
              CopyForJob(messageTextPath, SafeExtensionOf(source, kDefaultTextExtension), copies));
  int fileCount = 1;
  for (const std::string &document : attachments)
    job.SetText(job::File(fileCount++), CopyForJob(document, SafeExtensionOf(document), copies));
  job.SetNumber(job::FileCount, fileCount);
  job.SetText(job::TextTemplateFile, TextTemplatePath());
  job.SetRaw(job::Tag, tag);
  return FinishJobFile(jobFile, jobPath, record);
}

// Splits, reads the options and makes the jobs; false when the source must stay (its error file
// could not be written).
bool Convert(const std::string &source, const std::string &setupPath, const std::string &messageTextPath,
             AttachmentTable &attachments) {
  if (SplitBody(source, setupPath, messageTextPath) != 0) {
    // A split that could not open its files has deleted the source; one that failed later left it.
    const bool kept = FileExists(source);
    LogMessage(nullptr, kServiceEventSource, platform::kEventError, "Text file '%s' could not be split; %s",
               source.c_str(), kept ? "it stays for the next pass" : "it is deleted unfaxed");
    return !kept;
  }
  // A size that cannot be read (-1) is not an empty text: such a file is still faxed.
  if (!FileExists(messageTextPath) || GetFileSizeOf(messageTextPath) == 0) return true;

  RecipientTable recipients;
  FaxOptions options;
  if (FileExists(setupPath)) {
    std::string errorText;
    // The text itself is the one document; an attachment option adds a saved document after it,
    // and the source path is kept apart so that it cannot be replaced.
    if (ReadOptionLines(kTextFileSender, setupPath, recipients, kMessageRecipientLimit, attachments,
                        kTextFileAttachmentLimit, options, errorText) != 0) {
      WriteTextJobErrorFile(errorText, source);
      return !FileExists(source);
    }
    if (recipients.empty()) {
      WriteTextJobErrorFile(LookupString(kStringNoRecipient, kNoRecipientSize), source);
      return !FileExists(source);
    }
  }
  std::vector<std::string> perJob{messageTextPath};
  perJob.insert(perJob.end(), attachments.begin(), attachments.end());
  if (const auto overLimit = PendingLimitError(recipients.size(), perJob)) {
    WriteTextJobErrorFile(*overLimit, source);
    return !FileExists(source);
  }
  std::size_t written = 0;
  std::set<std::string> copies;
  for (const RecipientEntry &recipient : recipients) {
    if (!WriteTextJob(source, recipient, options, messageTextPath, attachments, copies)) {
      // The source is deleted all the same: an operator has to know whose faxes were not queued.
      LogMessage(
          nullptr, kServiceEventSource, platform::kEventError,
          "Text file '%s': no job file could be created in '%s'; %zu of %zu recipients were not queued",
          source.c_str(), CurrentService().pendingDirectory.c_str(), recipients.size() - written,
          recipients.size());
      break;
    }
    ++written;
  }
  platform::CopyFileTo(source, TextJobWorkingCopy(source), false);
  return true;
}

}  // namespace

void ConvertTextFile(std::string_view path) {
  const std::string setupPath = WorkFilePath(kSetupWorkFile);
  const std::string messageTextPath = WorkFilePath(kMessageTextWorkFile);
  platform::RemoveFile(messageTextPath);
  platform::RemoveFile(setupPath);
  std::string source(path);
  CutText(source, kMaxPath);
  if (!FileExists(source)) return;

  AttachmentTable attachments;
  const bool removeSource = Convert(source, setupPath, messageTextPath, attachments);

  RemoveIfPresent(messageTextPath);
  for (const std::string &document : attachments)
    RemoveIfPresent(document);
  if (removeSource) RemoveIfPresent(source);
}

}  // namespace tqv
