// The plain-text bodies of the sent-fax, received-fax and voicemail reports, and the value texts
// they show. Labels come from the string file by number; every line ends in CR LF. Records handed
// back by a fax service may hold anything, so every value is bounded and nothing can fail.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common/job_record.h"
#include "common/receive_record.h"

namespace tqv {

// A report body has room for this many characters; a longer one is cut.
inline constexpr std::size_t kReportBodyRoom = 2047;
// Marks the error line of a conversion error report and the error of an administration listing.
inline constexpr std::string_view kErrorLineMark = "###ERROR: ";
// Shown for a result or speed code that has no text.
inline constexpr std::string_view kUnknownCodeText = "?????";

// Codes 0 to 6 give texts 640 to 646; any other code kUnknownCodeText.
std::string StatusText(std::uint32_t code);
// Codes 0 to 5 give "2400 bps" to "14400 bps"; any other code kUnknownCodeText.
std::string SpeedText(std::int32_t code);
// Whole minutes and the remaining seconds, "%02d:%02d": 65 gives 01:05, 3600 gives 60:00.
std::string DurationText(std::int32_t seconds);
// Text 647 for 0 (standard resolution), text 648 for anything else (fine).
std::string ResolutionText(std::uint32_t fineResolution);

// The report on a finished job, for its delivery report and its text-job result file.
std::string FormatSentReport(const JobRecordView &job);
// The report on a received fax.
std::string FormatReceivedReport(const ReceiveRecordView &receive);
// The announcement of a recording in a voicemail box; the duration is always shown.
std::string FormatVoicemailReport(std::int32_t box, std::int32_t messageNumber, std::int32_t durationSeconds,
                                  std::int32_t sizeBytes, std::string_view dialledDigits);

}  // namespace tqv
