// The one way errors and notices leave the library: a line in CORVANTA.LOG in the Windows
// directory and an entry in the application event log. Logging never fails the caller.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

namespace tqv {

// Event source of every ordinary message, the fax service's own.
inline constexpr const char *kServiceEventSource = "Corvanta FAX Service";
// Event source of failed assertions.
inline constexpr const char *kAssertionEventSource = "CORVANTA";

// The log file, in the Windows directory.
inline constexpr const char *kLogFileName = "CORVANTA.LOG";
// A log larger than this is begun anew before the next entry.
inline constexpr std::int64_t kLogFileCap = 200000;
// An event message holds at most this many characters; longer ones are cut.
inline constexpr std::size_t kMaxEventMessage = 511;

// Appends "MM/DD/YYYY  hh:mm:ss  " + the formatted message + CR LF to the log file and reports
// the message as an event of `type` (1 error, 2 warning, 4 information) under `source`. With a
// module, a source not yet registered is registered for it. A failed step only loses its part.
void LogMessage(const void *module, const char *source, std::uint16_t type, const char *format, ...)
    __attribute__((format(printf, 4, 5)));
void LogMessageV(const void *module, const char *source, std::uint16_t type, const char *format,
                 std::va_list arguments) __attribute__((format(printf, 4, 0)));

}  // namespace tqv
