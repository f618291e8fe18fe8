// `tqv admin route` and `tqv admin block`: the routing entries of tqvadmin.ini by kind, and the
// numbers a user does not want dialled. Each command writes its result to `out` and a one-line
// reason to `err`, and returns the exit code.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "config/routing_entries.h"

namespace tqv::tool {

// "dtmf", "csid", "ocr-group", "ocr-keyword" (also "ocrgr", "ocrkw"; any letter case).
std::optional<RouteKind> ParseRouteKind(std::string_view text);
std::string_view RouteKindName(RouteKind kind);
// Why the library could never match this value of the kind; empty when it could.
std::string RouteValueProblem(RouteKind kind, std::string_view value);
// Why the library would not use this pattern as written; empty when it would.
std::string BlockedPatternProblem(std::string_view pattern);

struct RouteRow {
  RouteKind kind = RouteKind::Csid;
  std::string key;  // as in the file, e.g. CSID_00003
  std::string user;
  std::string value;
  bool malformed = false;  // no comma: the library stops reading the kind here
};

// The entries as the library reads them, up to the first gap or malformed entry (that one
// included), of one kind or all; only the user's when a user is given.
std::vector<RouteRow> CollectRoutes(std::optional<RouteKind> kind, std::optional<std::string_view> user);
std::string RenderRoutesText(const std::vector<RouteRow> &routes);
std::string RenderRoutesJson(const std::vector<RouteRow> &routes);

// The user as the database spells it, found in any letter case; nullopt for no user. Entries are
// written with this spelling, since OCR routing compares user names byte for byte.
std::optional<std::string> FindUser(std::string_view user);
// FindUser, or nullopt after saying "tqv admin COMMAND: no such user" on `err`.
std::optional<std::string> ExistingUser(std::string_view user, std::string_view command, std::ostream &err);
// The user's patterns up to the first empty entry.
std::vector<std::string> CollectBlockedNumbers(std::string_view user);

int AddRouteCommand(RouteKind kind, std::string_view user, std::string_view value, std::ostream &out,
                    std::ostream &err);
int RemoveRouteCommand(RouteKind kind, std::string_view user, std::string_view value, std::ostream &out,
                       std::ostream &err);
int ListRoutesCommand(std::optional<RouteKind> kind, std::optional<std::string_view> user, bool json,
                      std::ostream &out);

int AddBlockCommand(std::string_view user, std::string_view pattern, std::ostream &out, std::ostream &err);
int RemoveBlockCommand(std::string_view user, std::string_view pattern, std::ostream &out, std::ostream &err);
int ListBlockCommand(std::string_view user, bool json, std::ostream &out, std::ostream &err);

}  // namespace tqv::tool
