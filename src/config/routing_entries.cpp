// Route iteration and CSID learning over section [Routing]; see routing_entries.h. A failed
// write leaves the route unlearned, unnoticed.
#include "config/routing_entries.h"

#include "config/admin_database_state.h"
#include "config/numbered_list.h"

namespace tqv {

namespace {

constexpr std::string_view kRoutingSection = "Routing";

int ReadCursorRoute(std::size_t userSize, std::size_t valueSize, RouteEntry &entry) {
  const RouteCursor &cursor = AdminDatabase().routes;
  entry = RouteEntry{};
  const std::string value = ReadListEntry(kRoutingSection, cursor.prefix, cursor.index);
  if (value.empty()) return kListEnd;
  const std::optional<EntryFields> fields = SplitEntry(value);
  if (!fields) return kListMalformed;
  entry.user = CutToBuffer(fields->first, userSize);
  entry.value = CutToBuffer(fields->second, valueSize);
  return kListEntry;
}

}  // namespace

std::string_view RoutePrefix(RouteKind kind) {
  switch (kind) {
    case RouteKind::Dtmf:
      return "DTMF_";
    case RouteKind::Csid:
      return "CSID_";
    case RouteKind::OcrGroup:
      return "OCRGR_";
    case RouteKind::OcrKeyword:
      return "OCRKW_";
  }
  return "UNKNOWNROUTEITEM";
}

int FirstRoute(RouteKind kind, std::size_t userSize, std::size_t valueSize, RouteEntry &entry) {
  RouteCursor &cursor = AdminDatabase().routes;
  cursor.prefix = RoutePrefix(kind);
  cursor.index = 0;
  return ReadCursorRoute(userSize, valueSize, entry);
}

int NextRoute(std::size_t userSize, std::size_t valueSize, RouteEntry &entry) {
  ++AdminDatabase().routes.index;
  return ReadCursorRoute(userSize, valueSize, entry);
}

void EndRoutes() {}

int AddCsidRoute(std::string_view user, std::string_view remoteId) {
  return AddRoute(RouteKind::Csid, user, remoteId) < 0 ? -1 : 0;
}

int AddRoute(RouteKind kind, std::string_view user, std::string_view routeValue) {
  // The file keeps no blanks at the end of a value; compared with them, a padded identifier
  // would never be found again and be learned anew after every fax.
  routeValue = routeValue.substr(0, routeValue.find_last_not_of(" \t") + 1);
  if (user.empty() || routeValue.empty()) return -1;
  const std::string_view prefix = RoutePrefix(kind);
  for (std::int32_t index = 0; index < kMaxRouteEntries; ++index) {
    const std::string value = ReadListEntry(kRoutingSection, prefix, index);
    if (value.empty()) {
      std::string route(user);
      route += ',';
      route += routeValue;
      WriteListEntry(kRoutingSection, prefix, index, route);
      return 1;
    }
    const std::optional<EntryFields> fields = SplitEntry(value);
    if (fields && SameName(fields->first, user) && SameName(fields->second, routeValue)) return 0;
  }
  return -1;
}

int RemoveRoutes(RouteKind kind, std::string_view user, std::optional<std::string_view> routeValue) {
  if (routeValue) *routeValue = routeValue->substr(0, routeValue->find_last_not_of(" \t") + 1);
  const std::string_view prefix = RoutePrefix(kind);
  int removed = 0;
  for (std::int32_t index = 0;;) {
    const std::string value = ReadListEntry(kRoutingSection, prefix, index);
    if (value.empty()) return removed;
    const std::optional<EntryFields> fields = SplitEntry(value);
    if (fields && SameName(fields->first, user) && (!routeValue || SameName(fields->second, *routeValue))) {
      if (!RemoveListEntry(kRoutingSection, prefix, index)) return -1;
      ++removed;
    } else {
      ++index;
    }
  }
}

}  // namespace tqv
