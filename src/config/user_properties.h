// What each user of the fax server may do: a 32-bit word of flag bits per user in section
// [Recipients Properties]. A user without an entry has the default word; a value that is not a
// number reads as the profile functions make of it.
#pragma once

#include <cstdint>
#include <string_view>

namespace tqv {

// The flag bits of a user's properties. 0x0020 and 0x1000 have no meaning; they are kept when
// the word is written back.
enum class UserProperty : std::int32_t {
  SendFaxes = 0x0001,
  ReceiveUnrouted = 0x0002,
  ReceiveRouted = 0x0004,  // only together with ReceiveUnrouted
  OwnFaxHeader = 0x0008,
  HighResolution = 0x0010,
  BlockNumbers = 0x0040,
  LearnCsidRoute = 0x0080,
  RemoteAdministration = 0x0100,
  OcrGroupRouting = 0x0200,
  AttachOnFailure = 0x0400,
  AttachOnSuccess = 0x0800,
};

// RemoteAdministration, AttachOnFailure, AttachOnSuccess and 0x1000: a user without an entry
// may not send faxes.
inline constexpr std::int32_t kDefaultUserProperties = 7424;  // 0x1D00

constexpr bool HasProperty(std::int32_t properties, UserProperty bit) {
  return (properties & static_cast<std::int32_t>(bit)) != 0;
}

// The word with the bit set or cleared, every other bit kept.
constexpr std::int32_t WithProperty(std::int32_t properties, UserProperty bit, bool on) {
  const auto mask = static_cast<std::int32_t>(bit);
  return on ? (properties | mask) : (properties & ~mask);
}

std::int32_t GetUserProperties(std::string_view user);
// Stores the whole word as a decimal number.
void SetUserProperties(std::string_view user, std::int32_t properties);

}  // namespace tqv
