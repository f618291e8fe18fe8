// A received fax as one message to every user that routing chose: the reception report as its
// body, the fax image and, when asked for, the recognised text as attachments. When the message
// file cannot be created the fax is neither routed nor delivered, and an event names it.
#pragma once

#include <cstddef>

#include "common/receive_record.h"
#include "incoming/recipient_list.h"

namespace tqv {

// Texts of the received-fax message: the stand-in for a missing station identifier, the subject
// prefixes for a successful and a failed reception, and the word before the identifier.
inline constexpr int kUnknownStationText = 660;
inline constexpr int kReceivedSubjectText = 900;
inline constexpr int kFailedReceptionSubjectText = 901;
inline constexpr int kFaxFromText = 903;
// Rooms those texts are looked up with.
inline constexpr std::size_t kUnknownStationRoom = 95;
inline constexpr std::size_t kSubjectPrefixRoom = 511;

// Routes the fax into the (empty) list and writes the message. A missing station identifier is
// replaced by text 660 in the record, so the receive log shows what the message shows.
void DeliverReceivedFax(ReceiveRecordView receive, RecipientList &list);

}  // namespace tqv
