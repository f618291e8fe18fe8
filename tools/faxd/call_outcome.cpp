// Call outcomes. The T.30 completion text is kept in the result text, so a failed page reads as
// the session reported it.
#include "faxd/call_outcome.h"

#include <spandsp.h>

#include <algorithm>
#include <cmath>

namespace tqv::faxd {

namespace {

std::int32_t Seconds(double lineSeconds) {
  return static_cast<std::int32_t>(std::ceil(lineSeconds));
}

bool LocalImageFault(int code) {
  return code >= T30_ERR_FILEERROR && code <= T30_ERR_NOMEM;
}

}  // namespace

std::int32_t SpeedCodeOf(int bitRate) {
  static constexpr int kRates[] = {2400, 4800, 7200, 9600, 12000, 14400};
  std::int32_t code = 0;
  for (std::int32_t i = 0; i < 6; ++i)
    if (bitRate >= kRates[i]) code = i;
  return code;
}

RecordOutcome SendOutcomeOf(const CallResult &call) {
  RecordOutcome outcome;
  outcome.callDuration = Seconds(call.lineSeconds);
  if (call.line == LineState::Busy) {
    outcome.statusInfo = "Not sent: the line is busy";
    return outcome;
  }
  if (call.line == LineState::NoAnswer) {
    outcome.statusInfo = "Not sent: no fax machine answered (" + call.sender.completionText + ")";
    return outcome;
  }
  const SessionReport &sender = call.sender;
  outcome.remoteId = sender.remoteId;
  outcome.pages = static_cast<std::uint32_t>(std::max(sender.pages, 0));
  outcome.speedCode = SpeedCodeOf(sender.bitRate);
  outcome.fine = sender.fine;
  if (sender.completionCode == T30_ERR_OK && sender.pages > 0 && sender.pages >= sender.pagesInFile) {
    outcome.status = kStatusDelivered;
    return outcome;
  }
  if (LocalImageFault(sender.completionCode)) {
    outcome.statusInfo = "Not sent: the fax image cannot be sent (" + sender.completionText + ")";
    return outcome;
  }
  outcome.status = kStatusSendFailed;
  const std::string reason = sender.completionCode < 0 ? "the call was cut off" : sender.completionText;
  if (sender.pagesInFile > 0)
    outcome.statusInfo = "Failed on page " + std::to_string(std::min(sender.pages + 1, sender.pagesInFile)) +
                         " of " + std::to_string(sender.pagesInFile) + ": " + reason;
  else
    outcome.statusInfo = "Failed: " + reason;
  return outcome;
}

RecordOutcome ReceiveOutcomeOf(const CallResult &call) {
  RecordOutcome outcome;
  outcome.callDuration = Seconds(call.lineSeconds);
  const SessionReport &receiver = call.receiver;
  outcome.remoteId = receiver.remoteId;
  outcome.pages = static_cast<std::uint32_t>(std::max(receiver.pages, 0));
  outcome.speedCode = SpeedCodeOf(receiver.bitRate);
  outcome.fine = receiver.fine;
  if (receiver.completionCode == T30_ERR_OK && receiver.pages > 0) {
    outcome.status = kResultReceived;
    return outcome;
  }
  outcome.status = kResultReceiveFailed;
  outcome.statusInfo = "Reception failed after " + std::to_string(outcome.pages) + " pages: " +
                       (receiver.completionCode < 0 ? "the call was cut off" : receiver.completionText);
  return outcome;
}

}  // namespace tqv::faxd
