// The simulated telephone line: every call reaches a station named LOOPBACK on port LOOP1 and
// sends every page at 14400 bit/s, unless the caller asks for a failed call.
#pragma once

#include <cstdint>
#include <string_view>

namespace tqv::tool {

inline constexpr std::string_view kLoopbackRemoteId = "LOOPBACK";
inline constexpr std::string_view kLoopbackPort = "LOOP1";
inline constexpr std::uint32_t kStatusDelivered = 2;
inline constexpr std::uint32_t kStatusFailed = 3;
inline constexpr std::int32_t kSpeed14400 = 5;
inline constexpr std::int32_t kSecondsPerPage = 3;
inline constexpr std::string_view kFailureText = "Loopback line: simulated transmission failure";

// Fills the host's result fields of a job record (TQV_JOB_RECORD_SIZE bytes) after a call: one
// page per document and at least one. A failed call transfers no pages and says why.
void FillLoopbackResult(unsigned char *job, bool failed);

}  // namespace tqv::tool
