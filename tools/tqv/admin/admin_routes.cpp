// Routing entries and blocked numbers through the database code of the library; see
// admin_routes.h. Values are checked before anything is written, so a refused command leaves the
// file as it was.
#include "tqv/admin/admin_routes.h"

#include "common/text_limits.h"
#include "config/admin_database.h"
#include "config/blocked_numbers.h"
#include "config/numbered_list.h"
#include "config/user_list.h"
#include "config/user_properties.h"
#include "incoming/inbound_routing.h"
#include "tqv/admin/admin_text.h"
#include "tqv/shared/display_text.h"
#include "tqv/shared/json_writer.h"

namespace tqv::tool {

namespace {

constexpr std::string_view kRoutingSection = "Routing";
constexpr RouteKind kAllKinds[] = {RouteKind::Dtmf, RouteKind::Csid, RouteKind::OcrGroup,
                                   RouteKind::OcrKeyword};
// The separators of the words of OCR phrases.
constexpr std::string_view kOcrSeparators = ",.;:+-\t\n ";

bool HasDigit(std::string_view text) {
  return text.find_first_of("0123456789") != std::string_view::npos;
}

void CollectKind(RouteKind kind, std::optional<std::string_view> user, std::vector<RouteRow> &rows) {
  const std::string_view prefix = RoutePrefix(kind);
  for (std::int32_t index = 0;; ++index) {
    const std::string value = ReadListEntry(kRoutingSection, prefix, index);
    if (value.empty()) return;
    RouteRow row{kind, NumberedKey(prefix, index), {}, value, false};
    const std::optional<EntryFields> fields = SplitEntry(value);
    if (fields) {
      row.user = fields->first;
      row.value = fields->second;
    } else {
      row.malformed = true;
    }
    if (row.malformed || !user || SameName(row.user, *user)) rows.push_back(row);
    if (row.malformed) return;
  }
}

bool HasRoute(RouteKind kind, std::string_view user, std::string_view value) {
  std::vector<RouteRow> rows;
  CollectKind(kind, user, rows);
  for (const RouteRow &row : rows)
    if (!row.malformed && SameName(row.value, value)) return true;
  return false;
}

void CannotWrite(std::string_view command, std::ostream &err) {
  err << "tqv admin " << command << ": cannot write " << AdminDatabaseFile() << "\n";
}

}  // namespace

std::optional<RouteKind> ParseRouteKind(std::string_view text) {
  for (RouteKind kind : kAllKinds) {
    std::string_view prefix = RoutePrefix(kind);
    prefix.remove_suffix(1);
    if (SameName(text, RouteKindName(kind)) || SameName(text, prefix)) return kind;
  }
  return std::nullopt;
}

std::string_view RouteKindName(RouteKind kind) {
  switch (kind) {
    case RouteKind::Dtmf:
      return "dtmf";
    case RouteKind::Csid:
      return "csid";
    case RouteKind::OcrGroup:
      return "ocr-group";
    case RouteKind::OcrKeyword:
      return "ocr-keyword";
  }
  return "unknown";
}

std::string RouteValueProblem(RouteKind kind, std::string_view value) {
  // Each kind is read with its own buffer; a longer value would be compared cut.
  std::size_t limit = kOcrRouteValueSize - 1;
  if (kind == RouteKind::Csid) limit = kCsidRouteValueSize - 1;
  if (kind == RouteKind::Dtmf) limit = kDtmfRouteValueSize - 1;
  if (std::string problem = ValueProblem(value, limit); !problem.empty()) return problem;
  if (value.find_first_not_of(" \t") == std::string_view::npos) return "the value cannot be empty";
  if (kind == RouteKind::Dtmf && value.find_first_not_of("0123456789*#ABCDabcd ") != std::string_view::npos)
    return "dialled digits are 0-9, *, #, A-D";
  if ((kind == RouteKind::OcrGroup || kind == RouteKind::OcrKeyword) &&
      value.find_first_not_of(kOcrSeparators) == std::string_view::npos)
    return "the value holds no word";
  return {};
}

std::string BlockedPatternProblem(std::string_view pattern) {
  if (pattern.empty()) return "the pattern cannot be empty";
  if (std::string problem = ValueProblem(pattern, kBlockedPatternSize - 1); !problem.empty()) return problem;
  // Only digits count: a pattern without one would block every number.
  if (!HasDigit(pattern)) return "the pattern holds no digit and would block every number";
  return {};
}

std::vector<RouteRow> CollectRoutes(std::optional<RouteKind> kind, std::optional<std::string_view> user) {
  std::vector<RouteRow> rows;
  for (RouteKind each : kAllKinds)
    if (!kind || *kind == each) CollectKind(each, user, rows);
  return rows;
}

std::string RenderRoutesText(const std::vector<RouteRow> &routes) {
  std::string out;
  std::size_t malformed = 0;
  for (const RouteRow &row : routes) {
    out += row.key + "  ";
    if (row.malformed) {
      ++malformed;
      out += "malformed (no comma; the library reads no further): " + DisplayText(row.value) + "\n";
      continue;
    }
    out += DisplayText(row.user) + "  " + DisplayText(row.value) + "\n";
  }
  out += "-- " + Counted(routes.size() - malformed, "route");
  if (malformed > 0) out += ", " + std::to_string(malformed) + " malformed";
  return out + "\n";
}

std::string RenderRoutesJson(const std::vector<RouteRow> &routes) {
  JsonWriter json;
  json.BeginArray();
  for (const RouteRow &row : routes) {
    json.BeginObject();
    json.Key("kind");
    json.String(RouteKindName(row.kind));
    json.Key("key");
    json.String(row.key);
    json.Key("malformed");
    json.Bool(row.malformed);
    json.Key(row.malformed ? "text" : "user");
    json.String(row.malformed ? row.value : row.user);
    if (!row.malformed) {
      json.Key("value");
      json.String(row.value);
    }
    json.EndObject();
  }
  json.EndArray();
  return json.Text() + "\n";
}

std::optional<std::string> FindUser(std::string_view user) {
  for (std::optional<std::string> name = FirstUser(); name; name = NextUser())
    if (SameName(*name, user)) return name;
  return std::nullopt;
}

std::optional<std::string> ExistingUser(std::string_view user, std::string_view command, std::ostream &err) {
  std::optional<std::string> stored = FindUser(user);
  if (!stored) err << "tqv admin " << command << ": no such user: " << DisplayText(user) << "\n";
  return stored;
}

std::vector<std::string> CollectBlockedNumbers(std::string_view user) {
  std::vector<std::string> patterns;
  for (std::optional<std::string> pattern = FirstBlockedNumber(user, kListValueSize); pattern;
       pattern = NextBlockedNumber(kListValueSize))
    patterns.push_back(*pattern);
  return patterns;
}

int AddRouteCommand(RouteKind kind, std::string_view user, std::string_view value, std::ostream &out,
                    std::ostream &err) {
  const std::optional<std::string> stored = ExistingUser(user, "route add", err);
  if (!stored) return 1;
  const int result = AddRoute(kind, *stored, value);
  if (result < 0) {
    err << "tqv admin route add: the " << RouteKindName(kind) << " list is full\n";
    return 1;
  }
  // The list writes give no result; what reads back tells.
  if (!HasRoute(kind, *stored, value)) {
    CannotWrite("route add", err);
    return 1;
  }
  out << (result == 0 ? "Already present: " : "Added: ") << RouteKindName(kind) << " " << DisplayText(value)
      << " -> " << DisplayText(*stored) << "\n";
  if (kind == RouteKind::OcrGroup && !HasProperty(GetUserProperties(*stored), UserProperty::OcrGroupRouting))
    out << "Note: the user lacks OcrGroupRouting, so ocr-group entries are not used until --props "
           "+OcrGroupRouting.\n";
  return 0;
}

int RemoveRouteCommand(RouteKind kind, std::string_view user, std::string_view value, std::ostream &out,
                       std::ostream &err) {
  const int removed = RemoveRoutes(kind, user, value);
  if (removed < 0) {
    CannotWrite("route remove", err);
    return 1;
  }
  if (removed == 0) {
    err << "tqv admin route remove: no " << RouteKindName(kind) << " entry " << DisplayText(value) << " for "
        << DisplayText(user) << "\n";
    return 1;
  }
  out << "Removed " << Counted(static_cast<std::size_t>(removed), "route") << "\n";
  return 0;
}

int ListRoutesCommand(std::optional<RouteKind> kind, std::optional<std::string_view> user, bool json,
                      std::ostream &out) {
  const std::vector<RouteRow> routes = CollectRoutes(kind, user);
  out << (json ? RenderRoutesJson(routes) : RenderRoutesText(routes));
  return 0;
}

int AddBlockCommand(std::string_view user, std::string_view pattern, std::ostream &out, std::ostream &err) {
  if (!ExistingUser(user, "block add", err)) return 1;
  const std::size_t before = CollectBlockedNumbers(user).size();
  if (!AddBlockedNumber(user, pattern)) {
    out << "Already blocked: " << DisplayText(pattern) << "\n";
    return 0;
  }
  if (CollectBlockedNumbers(user).size() != before + 1) {
    CannotWrite("block add", err);
    return 1;
  }
  out << "Blocked for " << DisplayText(user) << ": " << DisplayText(pattern) << "\n";
  if (!HasProperty(GetUserProperties(user), UserProperty::BlockNumbers))
    out << "Note: the user lacks BlockNumbers, so no number is blocked until --props +BlockNumbers.\n";
  return 0;
}

int RemoveBlockCommand(std::string_view user, std::string_view pattern, std::ostream &out,
                       std::ostream &err) {
  const int removed = RemoveBlockedNumber(user, pattern);
  if (removed < 0) {
    CannotWrite("block remove", err);
    return 1;
  }
  if (removed == 0) {
    err << "tqv admin block remove: " << DisplayText(user) << " has no pattern " << DisplayText(pattern)
        << "\n";
    return 1;
  }
  out << "Removed " << Counted(static_cast<std::size_t>(removed), "pattern") << "\n";
  return 0;
}

int ListBlockCommand(std::string_view user, bool json, std::ostream &out, std::ostream &err) {
  if (!ExistingUser(user, "block list", err)) return 1;
  const std::vector<std::string> patterns = CollectBlockedNumbers(user);
  if (json) {
    JsonWriter writer;
    writer.BeginArray();
    for (const std::string &pattern : patterns)
      writer.String(pattern);
    writer.EndArray();
    out << writer.Text() << "\n";
    return 0;
  }
  for (const std::string &pattern : patterns)
    out << DisplayText(pattern) << "\n";
  out << "-- " << Counted(patterns.size(), "pattern");
  if (!HasProperty(GetUserProperties(user), UserProperty::BlockNumbers))
    out << " (not applied: no BlockNumbers)";
  out << "\n";
  return 0;
}

}  // namespace tqv::tool
