// Administration-database checks, read through the same list primitives the library uses, so an
// entry counts as missing or malformed exactly where the library would stop at it.
#include "tqv/check/check_admin_database.h"

#include <string>
#include <vector>

#include "common/path_helpers.h"
#include "config/admin_database.h"
#include "config/numbered_list.h"
#include "config/routing_entries.h"
#include "config/saved_files.h"
#include "config/user_list.h"
#include "config/user_properties.h"

namespace tqv::tool {

namespace {

constexpr std::string_view kRoutingSection = "Routing";

struct RoutedUser {
  std::string user;
  std::string firstKey;  // the first entry naming the user, for the message
};

std::vector<std::string> Users() {
  std::vector<std::string> users;
  for (std::optional<std::string> user = FirstUser(); user; user = NextUser())
    users.push_back(*user);
  EndUsers();
  return users;
}

bool Contains(const std::vector<std::string> &names, std::string_view name) {
  for (const std::string &each : names)
    if (SameName(each, name)) return true;
  return false;
}

std::vector<RoutedUser> CheckRoutingEntries(CheckReport &report) {
  std::vector<RoutedUser> routed;
  for (RouteKind kind : {RouteKind::Dtmf, RouteKind::Csid, RouteKind::OcrGroup, RouteKind::OcrKeyword}) {
    const std::string_view prefix = RoutePrefix(kind);
    for (std::int32_t index = 0; index < kMaxRouteEntries; ++index) {
      const std::string value = ReadListEntry(kRoutingSection, prefix, index);
      if (value.empty()) break;
      const std::string key = NumberedKey(prefix, index);
      const std::optional<EntryFields> fields = SplitEntry(value);
      if (!fields) {
        report.Error("[Routing] " + key + "=" + value + " has no comma: the " + std::string(prefix) +
                     " entries from here on are not used");
        break;
      }
      bool known = false;
      for (const RoutedUser &each : routed)
        known = known || SameName(each.user, fields->first);
      if (!known) routed.push_back({std::string(fields->first), key});
    }
  }
  return routed;
}

std::string_view KindName(SavedFileKind kind) {
  switch (kind) {
    case SavedFileKind::Coverpage:
      return "cover page";
    case SavedFileKind::Template:
      return "template";
    case SavedFileKind::Fax:
      break;
  }
  return "attachment";
}

void CheckSavedFiles(const std::string &user, CheckReport &report) {
  for (SavedFileKind kind : {SavedFileKind::Coverpage, SavedFileKind::Template, SavedFileKind::Fax}) {
    const std::string_view prefix = SavedFilePrefix(kind);
    const std::string where = "user " + Quoted(user) + ", ";
    // Readers start at index 0, which only the installation writes for cover pages and templates.
    if (kind != SavedFileKind::Fax && ReadListEntry(user, prefix, 0).empty() &&
        !ReadListEntry(user, prefix, 1).empty())
      report.Warning(where + NumberedKey(prefix, 0) + " is missing: none of the user's " +
                     std::string(KindName(kind)) + "s can be used");
    for (std::int32_t index = 0;; ++index) {
      const std::string value = ReadListEntry(user, prefix, index);
      if (value.empty()) break;
      const std::string key = NumberedKey(prefix, index);
      const std::optional<EntryFields> fields = SplitEntry(value);
      if (!fields) {
        report.Warning(where + key + "=" + value + " has no comma: the list ends there");
        break;
      }
      if (fields->second.empty() || !FileExists(fields->second))
        report.Warning(where + std::string(KindName(kind)) + " " + Quoted(fields->first) + " (" + key +
                       "): stored file " + Quoted(fields->second) + " is missing");
    }
  }
}

}  // namespace

void CheckAdminDatabase(std::string_view productDirectory, CheckReport &report) {
  // Limits only matter for adding entries, which a check never does.
  InitAdminDatabase(productDirectory, kInitialSavedFileLimit, kInitialSavedFileLimit, kInitialSavedFileLimit);
  if (AdminDatabaseFile().empty()) return;  // too long a path; the library logs it at start-up
  if (!FileExists(AdminDatabaseFile())) {
    report.Warning("administration database " + Quoted(AdminDatabaseFile()) +
                   " does not exist: there are no users");
    return;
  }
  const std::vector<std::string> users = Users();
  for (const RoutedUser &routed : CheckRoutingEntries(report)) {
    if (!Contains(users, routed.user))
      report.Warning("[Routing] " + routed.firstKey + " routes to " + Quoted(routed.user) +
                     ", who is not in [Recipient List]");
    else if (!HasProperty(GetUserProperties(routed.user), UserProperty::SendFaxes))
      report.Warning("user " + Quoted(routed.user) + " has routing entries (" + routed.firstKey +
                     ") but not the SendFaxes property");
  }
  for (const std::string &user : users)
    CheckSavedFiles(user, report);
}

}  // namespace tqv::tool
