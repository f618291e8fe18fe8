// Voicemail announcements: the voice recorder leaves BBBBNNNN.PCM (box BBBB, message NNNN) with a
// description file BBBBNNNN.ID in the voicemail directory; each description becomes a message to
// the owners of the box, or the recording moves to the box of the first user who takes the rest.
// Description files are always deleted once read; bad names are reported as events.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tqv {

// Message numbers run from 1 to this per box.
inline constexpr std::int32_t kMaxVoicemailNumber = 9999;
// A description file is named by box and message number, four digits each.
inline constexpr std::size_t kVoicemailFileBodyChars = 8;
// Dialled digits kept from a description file.
inline constexpr std::size_t kMaxVoicemailDigits = 126;
// The sender of voicemail messages, and the text of their status line.
inline constexpr std::string_view kVoicemailSender = "Corvanta";
inline constexpr int kVoicemailStatusText = 4400;

// Delivers and deletes every description file of the voicemail directory that opens exclusively;
// one the recorder still holds is left for a later pass. A missing directory finds nothing.
void ScanVoicemail();

// Announces the recording of one description file (full path) to the owners of its box, else
// moves it to the catch-all user's box. The description file itself is left to the caller.
void DeliverVoicemailFile(std::string_view descriptionPath);

// One above the highest message number below kMaxVoicemailNumber of the box's recordings in the
// voicemail directory, or 1: never more than kMaxVoicemailNumber.
std::int32_t NextVoicemailNumber(std::string_view box);

// One message to the user announcing the recording. When it cannot be written an event says so:
// a recording the catch-all pass moved is found only through its message.
void WriteVoicemailMessage(std::string_view user, std::int32_t box, std::int32_t messageNumber,
                           std::int32_t durationSeconds, std::int32_t sizeBytes, std::string_view digits);

}  // namespace tqv
