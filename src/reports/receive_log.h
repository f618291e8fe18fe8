// rcvlog.txt: one comma-separated line per received fax, naming the users it was routed to, with
// an archive copy of the fax (and of its recognised text) when the fax service asks for one.
// A log that cannot be opened is skipped; a missing archive directory is reported as an event.
#pragma once

#include <string_view>

#include "common/receive_record.h"
#include "incoming/recipient_list.h"

namespace tqv {

inline constexpr std::string_view kReceiveLogName = "rcvlog.txt";
inline constexpr std::string_view kReceiveLogHeader =
    "Date,Time,RemoteID,CallDuration,PagesReceived,Result,Info,Port,FileInArchiveDir,RoutedTo";

// The list is walked from its first name.
void AppendReceiveLog(const ReceiveRecordView &receive, RecipientList &routedTo);

}  // namespace tqv
