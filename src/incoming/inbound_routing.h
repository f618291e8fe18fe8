// Which users a received fax goes to: by the sending station's identifier, by the digits the
// caller keyed, by words recognised in the fax, and to the users who take what is left. Routing
// cannot fail: an unreadable recognised text or a malformed entry only means fewer matches.
#pragma once

#include <cstddef>

#include "common/receive_record.h"
#include "incoming/recipient_list.h"

namespace tqv {

// Buffer sizes the routing entries are read with: user names, and the values of each kind.
inline constexpr std::size_t kRouteUserSize = 255;
inline constexpr std::size_t kCsidRouteValueSize = 95;
inline constexpr std::size_t kDtmfRouteValueSize = 23;
inline constexpr std::size_t kOcrRouteValueSize = 255;
// The characters of RemoteId that the station rule compares.
inline constexpr std::size_t kMaxStationIdChars = 94;

// Adds the users of the CSID, DTMF and OCR rules in that order, then the default recipients.
// A user found by several rules is listed once, where the first rule put it.
void Route(const ReceiveRecordView &receive, RecipientList &list);

}  // namespace tqv
