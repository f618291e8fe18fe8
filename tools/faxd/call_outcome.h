// What a call means for the records: the result code, its text, the speed code, the duration and
// the pages of the job record (and of the receive record for the far end), from what the line and
// the T.30 session reported. Pure mapping; it cannot fail.
#pragma once

#include <cstdint>
#include <string>

#include "faxd/fax_line.h"

namespace tqv::faxd {

// Result codes as the library's reports name them.
inline constexpr std::uint32_t kStatusNotSent = 0;     // never reached a fax machine
inline constexpr std::uint32_t kStatusSendFailed = 1;  // the session failed
inline constexpr std::uint32_t kStatusDelivered = 2;
inline constexpr std::uint32_t kResultReceiveFailed = 3;
inline constexpr std::uint32_t kResultReceived = 4;

struct RecordOutcome {
  std::uint32_t status = kStatusNotSent;
  std::string statusInfo;
  std::int32_t speedCode = 0;
  std::int32_t callDuration = 0;  // whole seconds, rounded up
  std::uint32_t pages = 0;
  std::string remoteId;
  bool fine = false;
};

// 2400 -> 0 ... 14400 -> 5; any other rate (none, or V.34) gives the nearest code below it, 0 at
// the least.
std::int32_t SpeedCodeOf(int bitRate);

// The sender's outcome: busy and no answer are "not sent", a session that did not end well is
// "sending failed" with the page it failed on, a local image that T.30 could not read is "not sent".
RecordOutcome SendOutcomeOf(const CallResult &call);

// The far end's outcome of the same call.
RecordOutcome ReceiveOutcomeOf(const CallResult &call);

}  // namespace tqv::faxd
