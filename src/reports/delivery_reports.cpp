// Result messages into the gateway-in directory, each composed with its own MessageWriter and
// closed before returning. Subjects are composed from localised words and cut parts of the job;
// the writer keeps the first 254 characters of whatever is composed.
#include "reports/delivery_reports.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "config/message_strings.h"
#include "config/user_properties.h"
#include "diag/log_message.h"
#include "gateway/message_writer.h"
#include "platform/clock.h"
#include "platform/event_log.h"
#include "reports/admin_listing.h"
#include "reports/report_layout.h"

namespace tqv {

namespace {

constexpr int kSuccessSubject = 900;
constexpr int kFailureSubject = 901;
constexpr int kRecipientWord = 902;
// Lookup rooms of the subject prefixes: reports on faxes, and administration replies.
constexpr std::size_t kReportPrefixRoom = 511;
constexpr std::size_t kAdminPrefixRoom = 100;
// The JFAX service takes the documents; the body only has to exist.
constexpr std::string_view kJfaxBody = " ";

// The first `count` characters of a text as "%-.<count>s" shows it: up to a NUL at the latest.
std::string Leading(std::string_view text, std::size_t count) {
  return std::string(text.substr(0, std::min({count, text.size(), text.find('\0')})));
}

// The file of a body block; none for an empty path.
std::optional<std::string_view> BodyFile(std::string_view path) {
  if (path.empty()) return std::nullopt;
  return path;
}

std::int32_t Now() {
  return static_cast<std::int32_t>(platform::CurrentTime());
}

// The status, the result texts and counters of a job, and the custom string, as both reports
// on a job carry them.
void SetJobHeaders(MessageWriter &writer, const JobRecordView &job) {
  writer.SetFaxStatus(static_cast<std::int32_t>(job.Number(job::Status)));
  writer.SetStatusInfo(job.Text(job::StatusInfo));
  writer.SetNumRetries(static_cast<std::int32_t>(job.Number(job::NumRetries)));
  writer.SetCallDuration(job.Number(job::CallDuration));
  writer.SetPagesTransferred(static_cast<std::int32_t>(job.Number(job::PagesTransferred)));
  writer.SetDeliveryTime(Now());
  writer.SetCustomString(job.Text(job::CustomString));
}

// The outcome prefix, then the subject's first characters with the address in parentheses, or
// the address alone. The localised texts carry their own separators; only the delivery report
// puts a space between text 902 and the address.
std::string ReportSubject(int outcomeText, std::string_view subject, std::string_view address,
                          std::string_view afterWord) {
  std::string composed = LookupString(outcomeText, kReportPrefixRoom);
  const std::string addressPart =
      GetString(kRecipientWord) + std::string(afterWord) + Leading(address, kSubjectPartChars);
  const std::string subjectPart = Leading(subject, kSubjectPartChars);
  if (!subjectPart.empty())
    composed += subjectPart + " (" + addressPart + ")";
  else
    composed += addressPart;
  return composed;
}

bool WantsDocuments(const JobRecordView &job) {
  const std::int32_t properties = GetUserProperties(job.Text(job::SenderEmail));
  return job.Number(job::Status) == kStatusDelivered ? HasProperty(properties, UserProperty::AttachOnSuccess)
                                                     : HasProperty(properties, UserProperty::AttachOnFailure);
}

// False when a document that exists could not be attached.
bool AttachDocuments(MessageWriter &writer, const JobRecordView &job) {
  bool all = true;
  for (int i = 0; i < job.UsableFileCount(); ++i) {
    const std::string document = job.Text(job::File(i));
    if (!writer.AddAttachment(document) && IsAttachable(document)) all = false;
  }
  return all;
}

}  // namespace

void WriteDeliveryReport(const JobRecordView &job) {
  MessageWriter writer;
  if (!writer.Create(GatewayDirection::In)) return;
  writer.SetSender(job.Text(job::RecipientName));
  writer.AddRecipient(job.Text(job::SenderEmail));
  const bool delivered = job.Number(job::Status) == kStatusDelivered;
  writer.SetSubject(ReportSubject(delivered ? kSuccessSubject : kFailureSubject, job.Text(job::Subject),
                                  job.Text(job::FaxNumber), " "));
  SetJobHeaders(writer, job);
  const std::string messageText = job.Text(job::MessageTextFile);
  writer.AddBody(FormatSentReport(job), BodyFile(messageText));
  if (WantsDocuments(job)) AttachDocuments(writer, job);
  writer.Close();
}

void WriteJfaxMessage(const JobRecordView &job) {
  MessageWriter writer;
  if (!writer.Create(GatewayDirection::In)) {
    LogMessage(nullptr, kServiceEventSource, platform::kEventError,
               "The JFAX message from '%s' to '%s' with subject '%s' could not be created",
               job.Text(job::SenderEmail).c_str(), job.Text(job::FaxNumber).c_str(),
               job.Text(job::Subject).c_str());
    return;
  }
  writer.SetFileType(kJfaxJobTag);
  writer.SetSender(job.Text(job::SenderEmail));
  writer.AddRecipient(job.Text(job::FaxNumber));
  writer.SetSubject(job.Text(job::Subject));
  SetJobHeaders(writer, job);
  // A buffered body goes out before the header lines; the JFAX gateway reads the file that way.
  writer.AddBodyBuffer(kJfaxBody);
  const bool allDocuments = AttachDocuments(writer, job);
  // The documents are deleted after this call: a fax that did not go out whole must be heard of.
  if (!writer.Close() || !allDocuments)
    LogMessage(nullptr, kServiceEventSource, platform::kEventError,
               "The JFAX message from '%s' to '%s' with subject '%s' could not be written whole",
               job.Text(job::SenderEmail).c_str(), job.Text(job::FaxNumber).c_str(),
               job.Text(job::Subject).c_str());
}

bool WriteConversionErrorReport(std::string_view faxRecipient, std::string_view sender,
                                std::string_view subject, std::string_view errorText,
                                std::string_view bodyFile, std::span<const std::string> attachments,
                                std::string_view customString) {
  MessageWriter writer;
  if (!writer.Create(GatewayDirection::In)) return false;
  writer.SetSender(faxRecipient);
  writer.AddRecipient(sender);
  writer.SetSubject(ReportSubject(kFailureSubject, subject, faxRecipient, ""));

  const std::string errorLine = std::string(kErrorLineMark) + Leading(errorText, kErrorTextChars);
  writer.SetFaxStatus(static_cast<std::int32_t>(kStatusRefused));
  writer.SetStatusInfo(errorLine);
  writer.SetNumRetries(0);
  writer.SetCallDuration(0);
  writer.SetPagesTransferred(0);
  writer.SetDeliveryTime(Now());
  writer.SetCustomString(customString);
  writer.AddBody(errorLine, BodyFile(bodyFile));
  bool complete = true;
  for (const std::string &attachment : attachments) {
    if (!writer.AddAttachment(attachment) && IsAttachable(attachment)) complete = false;
  }
  return writer.Close() && complete;
}

void WriteAdminReply(std::string_view user, std::string_view subject, bool succeeded,
                     std::string_view errorText) {
  MessageWriter writer;
  if (!writer.Create(GatewayDirection::In)) return;
  writer.SetSender(kAdminAddress);
  writer.AddRecipient(user);
  writer.SetSubject(LookupString(succeeded ? kSuccessSubject : kFailureSubject, kAdminPrefixRoom) + " " +
                    Leading(subject, kSubjectPartChars));
  writer.SetDeliveryTime(Now());
  writer.AddBody(FormatAdminListing(user, errorText));
  writer.Close();
}

}  // namespace tqv
