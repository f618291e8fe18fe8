// sendlog.txt: one comma-separated line per finished outgoing fax, with archive copies of the
// documents of a delivered fax when the fax service asks for them. Nothing fails loudly: a log
// that cannot be opened is skipped, a missing archive directory is reported as an event.
#pragma once

#include <string_view>

#include "common/job_record.h"

namespace tqv {

inline constexpr std::string_view kSendLogName = "sendlog.txt";
inline constexpr std::string_view kSendLogHeader =
    "Date,Time,SenderEmail,SenderName,BillinCode,RemoteId,RecipientName,RecipientCompany,RecipientNumber,"
    "CallDuration,PagesTransferred,Result,Info,Port,FilesInArchiveDir";

void AppendSendLog(const JobRecordView &job);

}  // namespace tqv
