// The messages that hand a result back through the gateway-in directory: the delivery report of
// a finished job, the JFAX hand-off of a job's documents, the conversion error report and the
// administration reply. A delivery report or reply that cannot be written is skipped silently; a
// JFAX hand-off that cannot is reported as an event, as its documents go after it, and the
// conversion error report tells its caller.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "common/job_record.h"

namespace tqv {

// Cuts of the texts composed into subjects and error lines.
inline constexpr std::size_t kSubjectPartChars = 100;
inline constexpr std::size_t kErrorTextChars = 500;
// The sender of administration replies.
inline constexpr std::string_view kAdminAddress = "FAXADMIN";

// To SenderEmail from RecipientName: the sent-fax report followed by the message text, and the
// documents when the sender's AttachOnSuccess or AttachOnFailure property asks for them.
void WriteDeliveryReport(const JobRecordView &job);

// To the JFAX address in FaxNumber from SenderEmail, with every document attached.
void WriteJfaxMessage(const JobRecordView &job);

// To the sender of a message that could not be faxed: FAX-Status 6, the error line, the message
// body file and the message's attachments. The custom string is passed as bytes. False when the
// report could not be written, or went without a document that exists: the caller deletes the
// message regardless, so it must know.
bool WriteConversionErrorReport(std::string_view faxRecipient, std::string_view sender,
                                std::string_view subject, std::string_view errorText,
                                std::string_view bodyFile, std::span<const std::string> attachments,
                                std::string_view customString);

// To the user from FAXADMIN: the administration listing, after the error text when there is one.
void WriteAdminReply(std::string_view user, std::string_view subject, bool succeeded,
                     std::string_view errorText);

}  // namespace tqv
