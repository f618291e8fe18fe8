// Voicemail pass and announcements; see voicemail_delivery.h. Recordings are never attached: they
// stay in the voicemail directory under the box and number that the message names.
#include "incoming/voicemail_delivery.h"

#include <cstdio>
#include <optional>
#include <string>

#include "common/number_text.h"
#include "common/path_helpers.h"
#include "common/profile_helpers.h"
#include "common/receive_record.h"
#include "common/text_limits.h"
#include "config/message_strings.h"
#include "config/service_state.h"
#include "config/user_details.h"
#include "config/user_list.h"
#include "config/user_properties.h"
#include "diag/log_message.h"
#include "diag/special_file_notice.h"
#include "gateway/message_writer.h"
#include "platform/clock.h"
#include "platform/event_log.h"
#include "platform/file.h"
#include "platform/file_system.h"
#include "platform/profile.h"
#include "reports/report_layout.h"

namespace tqv {

namespace {

constexpr std::string_view kInfoSection = "Info";
constexpr std::string_view kDescriptionExtension = ".ID";
constexpr std::string_view kRecordingExtension = ".PCM";
constexpr std::size_t kBoxChars = 4;
// Rooms the user's voicemail entry is read with.
constexpr std::size_t kVoicemailFieldSize = 47;

// The voicemail directory with its backslash, cut to a path's length first.
std::string VoicemailPrefix() {
  std::string prefix = CurrentService().voicemailDirectory;
  CutText(prefix, kMaxPath);
  return AppendBackslash(prefix);
}

bool EndsWithIgnoringCase(std::string_view name, std::string_view ending) {
  if (name.size() < ending.size()) return false;
  const std::string_view tail = name.substr(name.size() - ending.size());
  for (std::size_t i = 0; i < tail.size(); ++i) {
    const char c = tail[i] >= 'a' && tail[i] <= 'z' ? static_cast<char>(tail[i] - 'a' + 'A') : tail[i];
    if (c != ending[i]) return false;
  }
  return true;
}

void ReportBadName(const std::string &message) {
  LogMessage(nullptr, kServiceEventSource, platform::kEventError, "%s", message.c_str());
}

struct Recording {
  std::int32_t box = 0;
  std::int32_t number = 0;
  std::int32_t duration = 0;
  std::int32_t size = 0;
  std::string digits;
};

// Box and message number from the name BBBBNNNN.ID; nullopt, reported, for any other shape.
std::optional<Recording> RecordingOf(std::string_view descriptionPath) {
  const std::size_t slash = descriptionPath.find_last_of("\\/");
  if (slash == std::string_view::npos) {
    ReportBadName("Invalid voicemail file, no '\\' found");
    return std::nullopt;
  }
  std::string_view body = descriptionPath.substr(slash + 1);
  const std::size_t dot = body.rfind('.');
  if (dot == std::string_view::npos) {
    ReportBadName("Invalid voicemail file, no '.' found");
    return std::nullopt;
  }
  body = body.substr(0, dot);
  if (body.size() != kVoicemailFileBodyChars) {
    ReportBadName("Invalid voicemail filebody '" + std::string(body) + "'");
    return std::nullopt;
  }
  Recording recording;
  recording.box = ParseLong(body.substr(0, kBoxChars));
  recording.number = ParseLong(body.substr(kBoxChars));
  return recording;
}

std::optional<std::string> BoxOf(std::string_view user) {
  std::optional<VoicemailEntry> entry = GetUserVoicemail(user, kVoicemailFieldSize, kVoicemailFieldSize);
  if (!entry) return std::nullopt;
  return entry->box;
}

void Announce(std::string_view user, const Recording &recording) {
  WriteVoicemailMessage(user, recording.box, recording.number, recording.duration, recording.size,
                        recording.digits);
}

bool AnnounceToOwners(const Recording &recording) {
  bool owned = false;
  for (std::optional<std::string> user = FirstUser(); user; user = NextUser()) {
    const std::optional<std::string> box = BoxOf(*user);
    if (!box || ParseLong(*box) != recording.box) continue;
    Announce(*user, recording);
    owned = true;
  }
  EndUsers();
  return owned;
}

// A box nobody owns: the recording moves to the next free number of the first user, in order,
// who takes unrouted faxes and may fax. Once it has moved, the copies for later users fail.
void MoveToCatchAllBox(std::string_view descriptionPath, const Recording &recording) {
  const std::string source =
      std::string(descriptionPath.substr(0, descriptionPath.rfind('.'))) + std::string(kRecordingExtension);
  for (std::optional<std::string> user = FirstUser(); user; user = NextUser()) {
    const std::int32_t properties = GetUserProperties(*user);
    if (!HasProperty(properties, UserProperty::SendFaxes) ||
        !HasProperty(properties, UserProperty::ReceiveUnrouted))
      continue;
    const std::optional<std::string> box = BoxOf(*user);
    if (!box) continue;
    Recording moved = recording;
    moved.box = ParseLong(*box);
    moved.number = NextVoicemailNumber(*box);
    char name[32];
    std::snprintf(name, sizeof name, "%04d%04d.pcm", moved.box, moved.number);
    std::string target = VoicemailPrefix() + name;
    CutText(target, kMaxPath);
    if (!platform::CopyFileTo(source, target, /*failIfExists=*/true)) continue;
    platform::RemoveFile(source);
    Announce(*user, moved);
  }
  EndUsers();
}

}  // namespace

void ScanVoicemail() {
  const std::string prefix = VoicemailPrefix();
  for (const platform::EntryInfo &entry : platform::FindEntries(prefix + "*.*")) {
    if (entry.name.size() <= kDescriptionExtension.size() ||
        !EndsWithIgnoringCase(entry.name, kDescriptionExtension))
      continue;
    if (entry.isDirectory) continue;
    std::string path = prefix + entry.name;
    CutText(path, kMaxPath);
    // Descriptions are read through the settings reader, which goes through links: only a plain
    // file may reach it from a directory others can write.
    if (!entry.isRegularFile) {
      NoticeSpecialFile(path);
      continue;
    }
    // The recorder holds the file without sharing until it has written it.
    if (!platform::File::OpenExclusive(path).has_value()) continue;
    DeliverVoicemailFile(path);
    platform::RemoveFile(path);
  }
}

void DeliverVoicemailFile(std::string_view descriptionPath) {
  const std::int32_t duration = GetProfileLong(kInfoSection, "Duration", 0, descriptionPath);
  const std::int32_t size = GetProfileLong(kInfoSection, "Size", 0, descriptionPath);
  std::string digits =
      platform::ProfileReadString(kInfoSection, "Digits", "", kMaxVoicemailDigits + 1, descriptionPath);
  std::optional<Recording> recording = RecordingOf(descriptionPath);
  if (!recording) return;
  recording->duration = duration;
  recording->size = size;
  recording->digits = std::move(digits);
  if (!AnnounceToOwners(*recording)) MoveToCatchAllBox(descriptionPath, *recording);
}

std::int32_t NextVoicemailNumber(std::string_view box) {
  const std::int32_t wanted = ParseLong(box);
  std::int32_t highest = 0;
  for (const platform::EntryInfo &entry : platform::FindEntries(VoicemailPrefix() + "*.*")) {
    if (entry.name.size() <= kRecordingExtension.size() ||
        !EndsWithIgnoringCase(entry.name, kRecordingExtension))
      continue;
    const std::string_view stem =
        std::string_view(entry.name).substr(0, entry.name.size() - kRecordingExtension.size());
    const std::string_view boxPart = stem.substr(0, kBoxChars);
    const std::string_view numberPart = stem.size() > kBoxChars ? stem.substr(kBoxChars, kBoxChars) : "";
    const std::int32_t number = ParseLong(numberPart);
    if (ParseLong(boxPart) == wanted && number > highest && number < kMaxVoicemailNumber) highest = number;
  }
  return highest + 1;
}

namespace {

// A recording the catch-all pass moved is found only through its message; an operator must hear
// of one that was not written.
void ReportUnannounced(std::string_view user, std::int32_t box, std::int32_t messageNumber) {
  LogMessage(nullptr, kServiceEventSource, platform::kEventError,
             "The message to '%s' about voicemail %d of box %d could not be written",
             std::string(user).c_str(), messageNumber, box);
}

}  // namespace

void WriteVoicemailMessage(std::string_view user, std::int32_t box, std::int32_t messageNumber,
                           std::int32_t durationSeconds, std::int32_t sizeBytes, std::string_view digits) {
  MessageWriter writer;
  if (!writer.Create(GatewayDirection::In)) {
    ReportUnannounced(user, box, messageNumber);
    return;
  }
  writer.SetSender(kVoicemailSender);
  writer.AddRecipient(user);
  char subject[96];
  std::snprintf(subject, sizeof subject, "Voicemail #%d (%d secs,%dK)", messageNumber, durationSeconds,
                sizeBytes / 1000);
  writer.SetSubject(subject);
  writer.SetFaxStatus(static_cast<std::int32_t>(kResultReceived));
  writer.SetStatusInfo(GetString(kVoicemailStatusText));
  writer.SetNumRetries(0);
  writer.SetCallDuration(durationSeconds);
  writer.SetPagesTransferred(0);
  writer.SetDeliveryTime(static_cast<std::int32_t>(platform::CurrentTime()));
  writer.AddBody(FormatVoicemailReport(box, messageNumber, durationSeconds, sizeBytes, digits));
  if (!writer.Close()) ReportUnannounced(user, box, messageNumber);
}

}  // namespace tqv
