// The single values the database keeps per user: the fax header line, the voicemail box and its
// text, and the OCR ratio. A missing entry gives the documented default; nothing fails.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tqv {

// The most characters of a voicemail box that count.
inline constexpr std::size_t kMaxVoicemailBox = 4;
// The OCR ratio of a user without an entry, and the highest one.
inline constexpr std::int32_t kFullOcrRatio = 100;

// The user's [FaxHeaders] line cut to size-1 characters; nullopt when that is empty.
std::optional<std::string> GetUserFaxHeader(std::string_view user, std::size_t size);
void SetUserFaxHeader(std::string_view user, std::string_view text);

struct VoicemailEntry {
  std::string box;   // at most kMaxVoicemailBox characters
  std::string text;  // empty when the value has no second field
};

// The user's [VoiceMail] value "box|text" (a line feed separates too, and separators in front
// are skipped), box and text cut to their buffer sizes; nullopt when the value holds no box.
std::optional<VoicemailEntry> GetUserVoicemail(std::string_view user, std::size_t boxSize,
                                               std::size_t textSize);

// Stores "box|text", or only the box when the text is empty; an empty box removes the entry.
void SetUserVoicemail(std::string_view user, std::string_view box, std::string_view text);

// The low eight bits of the user's [Recipients OCR Ratios] value, anything above 100 read as
// 100: always 0 to 100.
std::int32_t GetOcrRatio(std::string_view user);

}  // namespace tqv
