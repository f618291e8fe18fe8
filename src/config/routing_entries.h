// The entries that route received faxes to users: four numbered lists of section [Routing], by
// route kind, each entry "user name,routing value". One process-wide iteration; learned CSID
// routes are appended.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "config/numbered_list.h"

namespace tqv {

// The value of an entry: the digits dialled, the remote station identifier, an OCR word group or
// OCR keywords. Any other number names a list that does not exist.
enum class RouteKind : std::int32_t { Dtmf = 0, Csid = 1, OcrGroup = 2, OcrKeyword = 3 };

// The most indices a list holds: 00000 to 99998.
inline constexpr std::int32_t kMaxRouteEntries = 99999;

struct RouteEntry {
  std::string user;
  std::string value;
};

// "DTMF_", "CSID_", "OCRGR_", "OCRKW_", or "UNKNOWNROUTEITEM" for any other kind.
std::string_view RoutePrefix(RouteKind kind);

// Restarts the one route iteration at index 00000 of the kind's list. kListEntry with user and
// value cut to their buffer sizes, kListEnd at a missing or empty entry, kListMalformed for an
// entry without a comma; callers stop at anything but kListEntry.
int FirstRoute(RouteKind kind, std::size_t userSize, std::size_t valueSize, RouteEntry &entry);
// The next index of the iteration, with the same results.
int NextRoute(std::size_t userSize, std::size_t valueSize, RouteEntry &entry);
// Nothing to release.
void EndRoutes();

// Appends "user,identifier" to the CSID_ list unless that pair is there in any letter case.
// 0 when added or present; -1 when either is empty or all kMaxRouteEntries indices are taken.
int AddCsidRoute(std::string_view user, std::string_view remoteId);

// The same for any kind, telling the two apart: 1 when added at the first free index, 0 when the
// pair is there in any letter case, -1 when either is empty or the list is full.
int AddRoute(RouteKind kind, std::string_view user, std::string_view value);
// Removes the user's entries of the kind (only those with this value, in any letter case, when one
// is given), closing each gap; entries without a comma are passed over. The number removed, or -1
// when the file could not be written.
int RemoveRoutes(RouteKind kind, std::string_view user, std::optional<std::string_view> value);

}  // namespace tqv
