// The send and receive logs read back: lines of double-quoted values joined by single commas, as
// the library writes them without escaping. A value that holds a comma is still one value; a line
// that cannot be split into the header's columns is counted as unreadable, never a failure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tqv::tool {

enum class LogKind { Send, Receive };

// The column names of the log's header line, in order.
const std::vector<std::string> &LogColumns(LogKind kind);

// One data line: a value per column, in header order.
using LogLine = std::vector<std::string>;

// The values of a data line (without its line break); nullopt when the line is not one.
std::optional<LogLine> ParseLogLine(LogKind kind, std::string_view line);

struct LogContents {
  std::vector<LogLine> lines{};
  std::size_t unreadable = 0;
};

// Every data line of the file; the header and empty lines are passed over. nullopt when the file
// cannot be opened.
std::optional<LogContents> ReadLogFile(LogKind kind, std::string_view path);

struct LogDay {
  int year, month, day;
  auto operator<=>(const LogDay &) const = default;
};

// "2026-11-23" as a day; nullopt for anything else.
std::optional<LogDay> ParseIsoDay(std::string_view text);
// A Date column read back by the short-date picture the library formats it with (section [intl]
// of the Windows profile); two-digit years are taken as 20yy. nullopt when it does not fit.
std::optional<LogDay> ParseLogDay(std::string_view date);

// The lines dated on or after the day; lines whose date cannot be read are left out.
std::vector<LogLine> LinesSince(const std::vector<LogLine> &lines, const LogDay &since);

struct LogTotals {
  std::size_t faxes = 0;
  std::int64_t pages = 0;
  std::size_t successes = 0;
};

LogTotals TotalsOf(LogKind kind, const std::vector<LogLine> &lines);

// An aligned table of the main columns, then a line with the totals.
std::string RenderLogTable(LogKind kind, const std::vector<LogLine> &lines);
// {"lines": [{column: value, ...}], "totals": {...}} with every column.
std::string RenderLogJson(LogKind kind, const std::vector<LogLine> &lines);

}  // namespace tqv::tool
