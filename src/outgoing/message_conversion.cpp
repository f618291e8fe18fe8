// Message-to-fax conversion. Every path out of a conversion that got the message open removes the
// message-text work file and the documents extracted or copied into the work directory; jobs
// already written stay, as each is complete on its own.
#include "outgoing/message_conversion.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "admin/admin_request.h"
#include "common/file_extension.h"
#include "common/job_record.h"
#include "common/path_helpers.h"
#include "common/text_limits.h"
#include "common/unique_name.h"
#include "config/address_book.h"
#include "config/message_strings.h"
#include "config/saved_file_defaults.h"
#include "config/saved_files.h"
#include "config/service_state.h"
#include "config/settings_files.h"
#include "config/user_details.h"
#include "config/user_list.h"
#include "config/user_properties.h"
#include "diag/log_message.h"
#include "gateway/message_reader.h"
#include "outgoing/body_splitting.h"
#include "outgoing/dial_strings.h"
#include "outgoing/job_building.h"
#include "outgoing/option_lines.h"
#include "platform/event_log.h"
#include "platform/file.h"
#include "platform/file_system.h"
#include "reports/delivery_reports.h"

namespace tqv {

namespace {

// Field buffers of the working state, in bytes.
constexpr std::size_t kSenderSize = 95;
constexpr std::size_t kSubjectSize = 255;
constexpr std::size_t kCustomStringBytes = 255;
constexpr std::size_t kFaxHeaderSize = 47;
constexpr std::size_t kFullNameSize = 95;
constexpr std::size_t kChosenPathSize = kMaxPath + 1;
constexpr std::size_t kSavedNameSize = 255;
// Text 706 is fetched into a smaller buffer than the other errors.
constexpr std::size_t kSenderErrorSize = 127;
constexpr RawField kCustomStringBytesField{job::CustomString.offset, kCustomStringBytes};

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::toupper(static_cast<unsigned char>(x)) == std::toupper(static_cast<unsigned char>(y));
         });
}

// The text of a buffer filled by a reader getter: up to its first NUL.
template <std::size_t N>
std::string TextOf(const std::array<char, N> &buffer) {
  return std::string(buffer.data(), std::find(buffer.begin(), buffer.end(), '\0'));
}

void RemoveIfPresent(std::string_view path) {
  if (FileExists(path)) platform::RemoveFile(path);
}

// A user of the database with exactly this name (letter case included) who may send faxes.
bool MaySendFaxes(std::string_view sender) {
  const std::int32_t properties = GetUserProperties(sender);
  bool isUser = false;
  for (auto user = FirstUser(); user && !isUser; user = NextUser())
    isUser = (*user == sender);
  EndUsers();
  return isUser && HasProperty(properties, UserProperty::SendFaxes);
}

// What one message collected, and where its work files lie.
struct Conversion {
  std::string bodyPath;
  std::string setupPath;
  std::string messageTextPath;

  RecipientTable recipients;
  AttachmentTable attachments;
  std::string sender;
  std::string subject;
  std::string customString = std::string(kCustomStringBytes, '\0');
  std::string_view tag = kFaxJobTag;
  bool tagForced = false;
  FaxOptions options;
  std::string faxHeader;
  std::string coverPath;
  std::string templatePath;
  bool hasText = false;
  // Every copy a job names, made or not: two jobs naming one file would lose it when the first
  // one finishes.
  std::set<std::string> copies;

  void ReportError(std::string_view errorText) const {
    if (WriteConversionErrorReport(recipients.empty() ? std::string_view() : recipients.front().address,
                                   sender, subject, errorText, bodyPath, attachments, customString))
      return;
    // The message is deleted after its pass all the same.
    LogMessage(
        nullptr, kServiceEventSource, platform::kEventError,
        "Message from '%s' with subject '%s' could not be faxed (%s), and its error report could not be "
        "written whole",
        sender.c_str(), subject.c_str(), std::string(errorText).c_str());
  }
};

// Why a message was given up before its end: each is deleted without jobs and without a report.
enum class ReadOutcome { Complete, TablesFull, MalformedAttachmentLine, BlockUnreadable };

const char *ReasonGivenUp(ReadOutcome outcome) {
  switch (outcome) {
    case ReadOutcome::TablesFull:
      return "it has more recipients or attachments than one message may have";
    case ReadOutcome::MalformedAttachmentLine:
      return "an attachment line is malformed";
    case ReadOutcome::BlockUnreadable:
      return "its body or an attachment could not be extracted (a length past the end of the file?)";
    case ReadOutcome::Complete:
      break;
  }
  return "";
}

ReadOutcome ReadMessage(MessageReader &reader, Conversion &message, const std::string &workDirectory) {
  while (true) {
    // A full table ends the conversion before anything more is read, even the end of the message.
    if (message.recipients.size() >= kMessageRecipientLimit ||
        message.attachments.size() >= kMessageAttachmentLimit)
      return ReadOutcome::TablesFull;
    switch (reader.ReadNext()) {
      case ReadCode::End:
        return ReadOutcome::Complete;
      case ReadCode::Malformed:
        return ReadOutcome::MalformedAttachmentLine;
      case ReadCode::Sender: {
        std::array<char, kSenderSize> sender{};
        reader.GetSender(sender);
        message.sender = TextOf(sender);
        break;
      }
      case ReadCode::Recipient: {
        std::array<char, kMaxRecipientName + 1> name{};
        std::array<char, kMaxRecipientAddress + 1> address{};
        reader.GetRecipient(name, address);
        message.recipients.push_back({TextOf(name), TextOf(address), {}});
        break;
      }
      case ReadCode::Subject: {
        std::array<char, kSubjectSize> subject{};
        reader.GetSubject(subject);
        message.subject = TextOf(subject);
        break;
      }
      case ReadCode::Body:
        if (!reader.ExtractBody(message.bodyPath)) return ReadOutcome::BlockUnreadable;
        break;
      case ReadCode::Attachment: {
        std::array<char, kMaxAttachmentPath + 1> name{};
        reader.GetAttachmentName(name);
        // The name comes from the sender: its extension must not lead out of the work directory.
        const std::string path = MakeUniqueName(workDirectory, SafeExtensionOf(TextOf(name)));
        if (!reader.ExtractAttachment(path)) return ReadOutcome::BlockUnreadable;
        message.attachments.push_back(path);
        break;
      }
      case ReadCode::CustomString:
        reader.GetCustomString(message.customString);
        break;
      case ReadCode::FileType: {
        std::array<char, kHeaderFieldSize - 1> field{};
        reader.GetFileTypeField(field);
        const std::string fileType = TextOf(field);
        if (EqualsIgnoringCase(fileType, kJfaxJobTag)) {
          message.tag = kJfaxJobTag;
          message.tagForced = true;
        } else if (EqualsIgnoringCase(fileType, kFaxJobTag)) {
          message.tag = kFaxJobTag;
          message.tagForced = true;
        }
        break;
      }
      default:
        break;  // the result headers of a report mean nothing in an outgoing message
    }
  }
}

// The cover page: named by the options, the sender's default, or none. nullopt with the error
// text set when the choice cannot be made.
std::optional<std::string> ChooseCover(const Conversion &message, std::string &errorText) {
  const std::string &name = message.options.coverPageName;
  if (!name.empty()) {
    if (EqualsIgnoringCase(name, "none")) return std::string();
    const auto path = FindCover(message.sender, name, kChosenPathSize);
    if (!path)
      errorText = LookupString(kStringNoSuchCover, kErrorTextSize);
    else if (!FileExists(*path))
      errorText = LookupString(kStringCoverFileMissing, kErrorTextSize);
    else
      return path;
    return std::nullopt;
  }
  SavedFile cover;
  if (!GetDefaultCover(message.sender, kSavedNameSize, kChosenPathSize, cover)) return std::string();
  if (FileExists(cover.path)) return cover.path;
  errorText = LookupString(kStringDefaultFileMissing, kErrorTextSize);
  return std::nullopt;
}

std::optional<std::string> ChooseTemplate(const Conversion &message, std::string &errorText) {
  const std::string &name = message.options.templateName;
  if (!name.empty()) {
    const auto path = FindTemplate(message.sender, name, kChosenPathSize);
    if (!path)
      errorText = LookupString(kStringNoSuchTemplate, kErrorTextSize);
    else if (!FileExists(*path))
      errorText = LookupString(kStringTemplateFileMissing, kErrorTextSize);
    else
      return path;
    return std::nullopt;
  }
  SavedFile chosen;
  if (!GetDefaultTemplate(message.sender, kSavedNameSize, kChosenPathSize, chosen)) {
    errorText = LookupString(kStringNoDefaultTemplate, kErrorTextSize);
  } else if (!FileExists(chosen.path)) {
    errorText = LookupString(kStringDefaultFileMissing, kErrorTextSize);
  } else {
    return chosen.path;
  }
  return std::nullopt;
}

// Writes the job of one recipient; false when its job file cannot be created.
// The work files go to the last job itself (`lastJob`), not to a copy.
bool WriteJob(Conversion &message, RecipientEntry &recipient, bool lastJob) {
  std::string jobPath;
  auto jobFile = CreateJobFile(jobPath);
  if (!jobFile) return false;

  JobRecord record = JobRecord::WithTag(message.tag);
  JobRecordView job = record.View();
  job.SetText(job::Subject, message.subject);
  job.SetText(job::JobFile, jobPath);
  job.SetNumber(job::Status, kStatusCreated);
  job.SetNumber(job::FineResolution, message.options.fineResolution);
  job.SetText(job::FaxHeader, message.faxHeader);
  job.SetNumber(job::ScheduledTime, message.options.sendTime);
  job.SetNumber(job::SkipQueue, message.options.skipQueue);
  if (message.options.billingNumber > 0)
    job.SetText(job::BillingCode, std::to_string(message.options.billingNumber));

  const std::string senderName = GetUserFullName(message.sender, kFullNameSize);
  job.SetText(job::SenderEmail, message.sender);
  job.SetText(job::SenderName, senderName);
  job.SetText(job::RecipientName, recipient.name);
  job.SetText(job::RecipientNumber, recipient.address);

  // A display-name address also names the recipient, and these names go into the party block.
  std::string number;
  ExtractFaxNumber(recipient.address, number, recipient.name, recipient.company);
  job.SetText(job::FaxNumber, number);
  job.SetText(job::CoverPageFile, message.coverPath);
  job.SetText(job::TemplateFile, message.templatePath);

  if (FileExists(message.messageTextPath)) {
    job.SetText(job::MessageTextFile, CopyForJob(message.messageTextPath, "txt", message.copies, lastJob));
  }

  LookupAddressBook(message.sender, job, job::SenderParty, senderName, "", "");
  LookupAddressBook(job.Text(job::RecipientNumber), job, job::RecipientParty, recipient.name,
                    recipient.company, job.Text(job::FaxNumber));

  const std::string_view tag =
      AddressJob(number, message.tagForced ? std::optional<std::string_view>(message.tag) : std::nullopt);
  job.SetText(job::FaxNumber, number);
  job.SetText(job::TextTemplateFile, TextTemplatePath());

  int fileCount = 0;
  for (const std::string &document : message.attachments) {
    if (fileCount >= kMaxJobFiles) break;
    // A document listed twice is still needed after its first entry.
    const bool lastUse =
        lastJob && std::count(message.attachments.begin(), message.attachments.end(), document) == 1;
    job.SetText(job::File(fileCount++),
                CopyForJob(document, SafeExtensionOf(document), message.copies, lastUse));
  }
  job.SetNumber(job::FileCount, fileCount);
  job.SetRaw(kCustomStringBytesField, message.customString);
  job.SetRaw(job::Tag, tag);

  // A record that cannot be written counts as a job file that could not be created.
  return FinishJobFile(jobFile, jobPath, record);
}

// Steps from the sender check to the jobs; the caller cleans up whatever happens here.
void MakeJobs(Conversion &message, const ServiceState &service) {
  if (!MaySendFaxes(message.sender)) {
    message.ReportError(LookupString(kStringSenderNotAllowed, kSenderErrorSize));
    return;
  }
  const std::int32_t properties = GetUserProperties(message.sender);
  message.options.fineResolution = HasProperty(properties, UserProperty::HighResolution) ? 1 : 0;
  if (HasProperty(properties, UserProperty::OwnFaxHeader))
    message.faxHeader = GetUserFaxHeader(message.sender, kFaxHeaderSize).value_or("");

  if (IsAdminRequest(message.recipients)) {
    HandleAdminRequest(message.sender, message.subject, message.messageTextPath, message.attachments);
    return;
  }

  std::string errorText;
  if (FileExists(message.setupPath) &&
      ReadOptionLines(message.sender, message.setupPath, message.recipients, kMessageRecipientLimit,
                      message.attachments, kMessageAttachmentLimit, message.options, errorText) != 0) {
    message.ReportError(errorText);
    return;
  }

  const auto cover = ChooseCover(message, errorText);
  if (!cover) {
    message.ReportError(errorText);
    return;
  }
  message.coverPath = *cover;
  if (message.hasText) {
    const auto chosenTemplate = ChooseTemplate(message, errorText);
    if (!chosenTemplate) {
      message.ReportError(errorText);
      return;
    }
    message.templatePath = *chosenTemplate;
  }
  if (message.coverPath.empty() && message.templatePath.empty() && message.attachments.empty()) {
    message.ReportError(LookupString(kStringNothingToSend, kErrorTextSize));
    return;
  }

  // Read for their write-back only: what a message may make is held by the queued limit below.
  GetFaxAttachmentCheckFormat();
  GetFaxAttachmentMaxSize();

  // One message to many recipients multiplies its documents: it is refused before any job exists.
  std::vector<std::string> perJob(
      message.attachments.begin(),
      message.attachments.begin() + std::min<std::ptrdiff_t>(message.attachments.size(), kMaxJobFiles));
  perJob.push_back(message.messageTextPath);
  if (const auto overLimit = PendingLimitError(message.recipients.size(), perJob)) {
    message.ReportError(*overLimit);
    return;
  }

  std::size_t written = 0;
  for (RecipientEntry &recipient : message.recipients) {
    if (!WriteJob(message, recipient, &recipient == &message.recipients.back())) {
      // The message is deleted after its pass whatever happened; an operator has to know who
      // lost which recipients when the pending directory refuses new files.
      LogMessage(nullptr, kServiceEventSource, platform::kEventError,
                 "Message from '%s' with subject '%s': no job file could be created in '%s'; %zu of %zu "
                 "recipients were not queued",
                 message.sender.c_str(), message.subject.c_str(), service.pendingDirectory.c_str(),
                 message.recipients.size() - written, message.recipients.size());
      break;
    }
    ++written;
  }
}

}  // namespace

void ConvertMessage(std::string_view path) {
  const ServiceState &service = CurrentService();
  Conversion message;
  message.bodyPath = WorkFilePath(kBodyWorkFile);
  message.setupPath = WorkFilePath(kSetupWorkFile);
  message.messageTextPath = WorkFilePath(kMessageTextWorkFile);
  for (const std::string *file : {&message.bodyPath, &message.messageTextPath, &message.setupPath})
    platform::RemoveFile(*file);

  MessageReader reader;
  if (!reader.Open(path)) {
    // The pass deletes the message all the same; its sender is unknown, so the file is named.
    LogMessage(nullptr, kServiceEventSource, platform::kEventError,
               "Message '%s' could not be opened for conversion and is deleted unconverted",
               std::string(path).c_str());
    return;
  }

  const ReadOutcome outcome = ReadMessage(reader, message, service.workDirectory);
  if (reader.MachineFault()) {
    // What was read may be a part of the message only: faxing it would drop recipients unseen.
    LogMessage(
        nullptr, kServiceEventSource, platform::kEventError,
        "Message '%s' from '%s' with subject '%s' could not be read whole; it is deleted and nothing of "
        "it was faxed",
        std::string(path).c_str(), message.sender.c_str(), message.subject.c_str());
  } else if (outcome == ReadOutcome::Complete) {
    if (FileExists(message.bodyPath) &&
        SplitBody(message.bodyPath, message.setupPath, message.messageTextPath) != 0) {
      LogMessage(nullptr, kServiceEventSource, platform::kEventError,
                 "Message from '%s' with subject '%s': its text and option lines could not be read; it is "
                 "faxed without them",
                 message.sender.c_str(), message.subject.c_str());
    }
    message.hasText = FileExists(message.messageTextPath) && GetFileSizeOf(message.messageTextPath) > 0;
    MakeJobs(message, service);
  } else {
    // Nothing goes back to a sender the message itself may not name whole; an operator still
    // hears of every message that vanished.
    LogMessage(nullptr, kServiceEventSource, platform::kEventWarning,
               "Message '%s' from '%s' with subject '%s' is deleted unconverted: %s",
               std::string(path).c_str(), message.sender.c_str(), message.subject.c_str(),
               ReasonGivenUp(outcome));
  }

  reader.Close();
  RemoveIfPresent(message.messageTextPath);
  for (const std::string &document : message.attachments)
    RemoveIfPresent(document);
}

}  // namespace tqv
