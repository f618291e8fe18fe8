// Fax header, voicemail box and OCR ratio of a user; see user_details.h.
#include "config/user_details.h"

#include "common/text_limits.h"
#include "config/admin_database.h"
#include "config/numbered_list.h"

namespace tqv {

namespace {

constexpr std::string_view kFaxHeadersSection = "FaxHeaders";
constexpr std::string_view kVoicemailSection = "VoiceMail";
constexpr std::string_view kOcrRatiosSection = "Recipients OCR Ratios";
constexpr std::string_view kVoicemailSeparators = "|\n";

// The next run of non-separators from `position`, as strtok finds it; empty when none is left.
std::string_view NextToken(std::string_view text, std::size_t &position) {
  const std::size_t start = text.find_first_not_of(kVoicemailSeparators, position);
  if (start == std::string_view::npos) {
    position = text.size();
    return {};
  }
  std::size_t end = text.find_first_of(kVoicemailSeparators, start);
  if (end == std::string_view::npos) end = text.size();
  position = end < text.size() ? end + 1 : end;
  return text.substr(start, end - start);
}

}  // namespace

std::optional<std::string> GetUserFaxHeader(std::string_view user, std::size_t size) {
  std::string header = AdminGetString(kFaxHeadersSection, user, "", size);
  if (header.empty()) return std::nullopt;
  return header;
}

void SetUserFaxHeader(std::string_view user, std::string_view text) {
  AdminPutString(kFaxHeadersSection, user, text);
}

std::optional<VoicemailEntry> GetUserVoicemail(std::string_view user, std::size_t boxSize,
                                               std::size_t textSize) {
  const std::string value = AdminGetString(kVoicemailSection, user, "", kListValueSize);
  std::size_t position = 0;
  const std::string_view box = NextToken(value, position);
  if (box.empty()) return std::nullopt;
  VoicemailEntry entry;
  entry.box = CutToBuffer(box, boxSize);
  CutText(entry.box, kMaxVoicemailBox);
  entry.text = CutToBuffer(NextToken(value, position), textSize);
  return entry;
}

void SetUserVoicemail(std::string_view user, std::string_view box, std::string_view text) {
  if (box.empty()) {
    AdminPutString(kVoicemailSection, user, std::nullopt);
    return;
  }
  std::string value(box);
  if (!text.empty()) {
    value += '|';
    value += text;
  }
  AdminPutString(kVoicemailSection, user, value);
}

std::int32_t GetOcrRatio(std::string_view user) {
  const std::int32_t ratio = AdminGetInt(kOcrRatiosSection, user, kFullOcrRatio) & 0xFF;
  return ratio > kFullOcrRatio ? kFullOcrRatio : ratio;
}

}  // namespace tqv
