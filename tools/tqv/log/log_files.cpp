// Reading the logs back. Values are not escaped when written, so a line is split at every '","'
// and, when that gives more pieces than columns, the pieces are put back together around the three
// columns whose form is fixed (duration, pages, result): extra pieces belong to the free text next
// to them.
#include "tqv/log/log_files.h"

#include <algorithm>
#include <cctype>
#include <fstream>

#include "platform/profile.h"
#include "reports/receive_log.h"
#include "reports/send_log.h"
#include "tqv/shared/display_text.h"
#include "tqv/shared/json_writer.h"

#if !defined(_WIN32)
#include "platform/posix/native_path.h"
#endif

namespace tqv::tool {

namespace {

constexpr std::string_view kSeparator = "\",\"";
constexpr std::string_view kSuccess = "SUCCESS";
// Longer values are cut in the table; the JSON keeps them whole.
constexpr std::size_t kTableValueChars = 32;

std::vector<std::string> Split(std::string_view text, std::string_view separator) {
  std::vector<std::string> pieces;
  for (std::size_t start = 0;;) {
    const std::size_t end = text.find(separator, start);
    pieces.emplace_back(text.substr(start, end - start));
    if (end == std::string_view::npos) return pieces;
    start = end + separator.size();
  }
}

std::string JoinPieces(const std::vector<std::string> &pieces, std::size_t first, std::size_t last) {
  std::string text = pieces[first];
  for (std::size_t i = first + 1; i < last; ++i)
    text += std::string(kSeparator) + pieces[i];
  return text;
}

bool IsDigits(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool IsDuration(std::string_view text) {
  const std::size_t colon = text.find(':');
  return colon != std::string_view::npos && IsDigits(text.substr(0, colon)) &&
         IsDigits(text.substr(colon + 1));
}

std::size_t ColumnIndex(LogKind kind, std::string_view name) {
  const std::vector<std::string> &columns = LogColumns(kind);
  return static_cast<std::size_t>(std::find(columns.begin(), columns.end(), name) - columns.begin());
}

// The pages column is the one after the duration in both logs.
std::size_t DurationColumn(LogKind kind) {
  return ColumnIndex(kind, "CallDuration");
}

std::size_t CharCount(std::string_view utf8) {
  return static_cast<std::size_t>(
      std::count_if(utf8.begin(), utf8.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

struct TableColumn {
  std::string_view column;
  std::string_view heading;
};

std::vector<TableColumn> TableColumns(LogKind kind) {
  if (kind == LogKind::Send)
    return {{"Date", "Date"},
            {"Time", "Time"},
            {"SenderEmail", "Sender"},
            {"RecipientName", "Recipient"},
            {"RecipientNumber", "Number"},
            {"CallDuration", "Duration"},
            {"PagesTransferred", "Pages"},
            {"Result", "Result"},
            {"Info", "Info"}};
  return {
      {"Date", "Date"},           {"Time", "Time"},     {"RemoteID", "Remote"}, {"CallDuration", "Duration"},
      {"PagesReceived", "Pages"}, {"Result", "Result"}, {"Info", "Info"},       {"RoutedTo", "Routed to"}};
}

std::string TableValue(std::string_view value) {
  if (value.size() <= kTableValueChars) return DisplayText(value);
  return DisplayText(value.substr(0, kTableValueChars - 3)) + "...";
}

std::string IntlSetting(std::string_view key, std::size_t size) {
  return platform::ProfileReadString("intl", key, "", size, "WIN.INI");
}

// Reads `count` digits (or between 1 and 2 when count is 0) at `pos`.
std::optional<int> ReadNumber(std::string_view text, std::size_t &pos, std::size_t count) {
  const std::size_t most = count == 0 ? 2 : count;
  std::size_t end = pos;
  while (end < text.size() && end - pos < most && std::isdigit(static_cast<unsigned char>(text[end])))
    ++end;
  if (end == pos || (count != 0 && end - pos != count)) return std::nullopt;
  const int value = std::stoi(std::string(text.substr(pos, end - pos)));
  pos = end;
  return value;
}

}  // namespace

const std::vector<std::string> &LogColumns(LogKind kind) {
  static const std::vector<std::string> send = Split(kSendLogHeader, ",");
  static const std::vector<std::string> receive = Split(kReceiveLogHeader, ",");
  return kind == LogKind::Send ? send : receive;
}

std::optional<LogLine> ParseLogLine(LogKind kind, std::string_view line) {
  if (line.size() < 2 || line.front() != '"' || line.back() != '"') return std::nullopt;
  const std::vector<std::string> pieces = Split(line.substr(1, line.size() - 2), kSeparator);
  const std::size_t columns = LogColumns(kind).size();
  if (pieces.size() == columns) return pieces;
  if (pieces.size() < columns) return std::nullopt;

  const std::size_t duration = DurationColumn(kind);
  const std::size_t textBefore = duration - 2;  // free-text columns between time and duration
  const std::size_t textAfter = columns - duration - 3;
  for (std::size_t at = duration; at + 3 + textAfter <= pieces.size(); ++at) {
    if (!IsDuration(pieces[at]) || !IsDigits(pieces[at + 1]) ||
        (pieces[at + 2] != kSuccess && pieces[at + 2] != "FAILURE"))
      continue;
    // Only a single free-text column before the fixed ones can take the extra pieces unambiguously.
    if (at - 2 != textBefore && textBefore != 1) continue;
    LogLine values(pieces.begin(), pieces.begin() + 2);
    if (at - 2 == textBefore)
      values.insert(values.end(), pieces.begin() + 2, pieces.begin() + static_cast<std::ptrdiff_t>(at));
    else
      values.push_back(JoinPieces(pieces, 2, at));
    values.insert(values.end(), pieces.begin() + static_cast<std::ptrdiff_t>(at),
                  pieces.begin() + static_cast<std::ptrdiff_t>(at + 3));
    // The first column after them (the result text) takes what is left over.
    const std::size_t infoEnd = pieces.size() - textAfter + 1;
    values.push_back(JoinPieces(pieces, at + 3, infoEnd));
    values.insert(values.end(), pieces.begin() + static_cast<std::ptrdiff_t>(infoEnd), pieces.end());
    return values;
  }
  return std::nullopt;
}

std::optional<LogContents> ReadLogFile(LogKind kind, std::string_view path) {
#if defined(_WIN32)
  std::ifstream file{std::string(path), std::ios::binary};
#else
  std::ifstream file{platform::ToNativePath(path), std::ios::binary};
#endif
  if (!file) return std::nullopt;
  LogContents contents;
  const std::string header =
      kind == LogKind::Send ? std::string(kSendLogHeader) : std::string(kReceiveLogHeader);
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line == header) continue;
    if (std::optional<LogLine> values = ParseLogLine(kind, line))
      contents.lines.push_back(std::move(*values));
    else
      ++contents.unreadable;
  }
  return contents;
}

std::optional<LogDay> ParseIsoDay(std::string_view text) {
  std::size_t pos = 0;
  const std::optional<int> year = ReadNumber(text, pos, 4);
  if (!year || pos >= text.size() || text[pos++] != '-') return std::nullopt;
  const std::optional<int> month = ReadNumber(text, pos, 2);
  if (!month || pos >= text.size() || text[pos++] != '-') return std::nullopt;
  const std::optional<int> day = ReadNumber(text, pos, 2);
  if (!day || pos != text.size() || *month < 1 || *month > 12 || *day < 1 || *day > 31) return std::nullopt;
  return LogDay{*year, *month, *day};
}

std::optional<LogDay> ParseLogDay(std::string_view date) {
  // The walk mirrors the writer's: a doubled letter is two digits, a single one one or two.
  const std::string separatorValue = IntlSetting("sDate", 2);
  const char separator = separatorValue.empty() ? '/' : separatorValue.front();
  const std::string picture = IntlSetting("sShortDate", 80);
  if (picture.empty()) return std::nullopt;
  const std::size_t firstY = picture.find('y');
  const bool shortYear = firstY != std::string::npos && picture.rfind('y') == firstY + 1;
  LogDay day{0, 0, 0};
  std::size_t pos = 0;
  for (std::size_t at = 0; at < picture.size();) {
    const char c = picture[at];
    const bool doubled = at + 1 < picture.size() && picture[at + 1] == c;
    std::optional<int> value;
    if (c == separator) {
      if (pos >= date.size() || date[pos++] != separator) return std::nullopt;
      ++at;
      continue;
    }
    if (c == 'd' || c == 'M') {
      value = ReadNumber(date, pos, doubled ? 2 : 0);
      (c == 'd' ? day.day : day.month) = value.value_or(0);
      at += doubled ? 2 : 1;
    } else if (c == 'y') {
      value = ReadNumber(date, pos, shortYear ? 2 : 4);
      day.year = value ? (shortYear ? 2000 + *value : *value) : 0;
      at += shortYear ? 2 : 4;
    }
    if (!value) return std::nullopt;
  }
  if (pos != date.size() || day.year == 0 || day.month == 0 || day.day == 0) return std::nullopt;
  return day;
}

std::vector<LogLine> LinesSince(const std::vector<LogLine> &lines, const LogDay &since) {
  std::vector<LogLine> kept;
  for (const LogLine &line : lines) {
    const std::optional<LogDay> day = ParseLogDay(line[0]);
    if (day && *day >= since) kept.push_back(line);
  }
  return kept;
}

LogTotals TotalsOf(LogKind kind, const std::vector<LogLine> &lines) {
  const std::size_t pages = DurationColumn(kind) + 1;
  const std::size_t result = pages + 1;
  LogTotals totals;
  for (const LogLine &line : lines) {
    ++totals.faxes;
    if (IsDigits(line[pages])) totals.pages += std::stoll(line[pages]);
    if (line[result] == kSuccess) ++totals.successes;
  }
  return totals;
}

std::string RenderLogTable(LogKind kind, const std::vector<LogLine> &lines) {
  const std::vector<TableColumn> columns = TableColumns(kind);
  std::vector<std::vector<std::string>> rows(1);
  for (const TableColumn &column : columns)
    rows[0].emplace_back(column.heading);
  for (const LogLine &line : lines) {
    rows.emplace_back();
    for (const TableColumn &column : columns)
      rows.back().push_back(TableValue(line[ColumnIndex(kind, column.column)]));
  }
  std::vector<std::size_t> widths(columns.size(), 0);
  for (const auto &row : rows)
    for (std::size_t i = 0; i < row.size(); ++i)
      widths[i] = std::max(widths[i], CharCount(row[i]));

  std::string text;
  for (const auto &row : rows) {
    std::string out;
    for (std::size_t i = 0; i < row.size(); ++i) {
      out += row[i];
      if (i + 1 < row.size()) out += std::string(widths[i] - CharCount(row[i]) + 2, ' ');
    }
    while (!out.empty() && out.back() == ' ')
      out.pop_back();
    text += out + "\n";
  }
  const LogTotals totals = TotalsOf(kind, lines);
  text += "\n" + std::to_string(totals.faxes) + (totals.faxes == 1 ? " fax, " : " faxes, ") +
          Counted(static_cast<std::size_t>(totals.pages), "page") + ", " + std::to_string(totals.successes) +
          " successful";
  if (totals.faxes > 0) text += " (" + std::to_string(totals.successes * 100 / totals.faxes) + "%)";
  return text + "\n";
}

std::string RenderLogJson(LogKind kind, const std::vector<LogLine> &lines) {
  const std::vector<std::string> &columns = LogColumns(kind);
  JsonWriter json;
  json.BeginObject();
  json.Key("lines");
  json.BeginArray();
  for (const LogLine &line : lines) {
    json.BeginObject();
    for (std::size_t i = 0; i < columns.size(); ++i) {
      json.Key(columns[i]);
      json.String(line[i]);
    }
    json.EndObject();
  }
  json.EndArray();
  const LogTotals totals = TotalsOf(kind, lines);
  json.Key("totals");
  json.BeginObject();
  json.Key("faxes");
  json.Number(static_cast<std::int64_t>(totals.faxes));
  json.Key("pages");
  json.Number(totals.pages);
  json.Key("successes");
  json.Number(static_cast<std::int64_t>(totals.successes));
  json.Key("successPercent");
  if (totals.faxes > 0)
    json.Number(static_cast<std::int64_t>(totals.successes * 100 / totals.faxes));
  else
    json.Null();
  json.EndObject();
  json.EndObject();
  return json.Text() + "\n";
}

}  // namespace tqv::tool
