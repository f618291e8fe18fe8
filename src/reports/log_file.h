// What the send log and the receive log share: the file in the product directory with its header,
// the quoted columns, the date and time columns, and writing a line in text mode. A log that
// cannot be opened, or a new one whose header cannot be written, is skipped without a message.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/file.h"

namespace tqv {

// The log file in the product directory, opened for appending; a new file first gets the header
// line and an empty line. nullopt when there is no product directory or the file cannot be opened.
std::optional<platform::File> OpenLogFile(std::string_view fileName, std::string_view headerLine);

// A line's first two columns, "date","time", from one reading of the clock. A date the picture
// cannot give leaves its column empty.
std::string LogLineStart();

// Appends a comma and the value in double quotes; the value is written as it is.
void AppendLogColumn(std::string &line, std::string_view value);

// Writes the line and its line break in text mode.
void WriteLogLine(platform::File &log, std::string_view line);

}  // namespace tqv
