#include "config/routing_entries.h"

#include <string>
#include <vector>

#include "config/admin_database_fixture.h"
#include "config/user_list.h"

namespace tqv {
namespace {

using RoutingEntries = testing::AdminDatabaseTest;
using Entries = std::vector<std::string>;

// Every entry of the kind, "user|value", and the result that ended the walk.
std::pair<Entries, int> Walk(RouteKind kind, std::size_t size = 255) {
  Entries entries;
  RouteEntry entry;
  int result = FirstRoute(kind, size, size, entry);
  for (; result == kListEntry; result = NextRoute(size, size, entry))
    entries.push_back(entry.user + "|" + entry.value);
  return {entries, result};
}

constexpr const char *kRouting =
    "[Routing]\nDTMF_00000=joe,21\nDTMF_00001=ann,22\n"
    "csid_00000=joe,+49 89 1234\nCSID_00001=no comma\nCSID_00002=ann,+1 555\n"
    "OCRGR_00001=joe,Invoices\nOCRKW_00000=ann,order, delivery\nOCRKW_00001=\nOCRKW_00002=joe,late\n"
    "UNKNOWNROUTEITEM00000=bob,odd\n";

TEST_F(RoutingEntries, EachKindIsItsOwnListEndedByAGapOrAnEntryWithoutComma) {
  WriteDatabase(kRouting);
  EXPECT_EQ(Walk(RouteKind::Dtmf), std::pair(Entries{"joe|21", "ann|22"}, 0));
  EXPECT_EQ(Walk(RouteKind::Csid), std::pair(Entries{"joe|+49 89 1234"}, -1));
  EXPECT_EQ(Walk(RouteKind::OcrGroup), std::pair(Entries{}, 0));
  EXPECT_EQ(Walk(RouteKind::OcrKeyword), std::pair(Entries{"ann|order, delivery"}, 0));
  EXPECT_EQ(Walk(static_cast<RouteKind>(7)), std::pair(Entries{"bob|odd"}, 0));
  EXPECT_EQ(Walk(RouteKind::Csid, 4), std::pair(Entries{"joe|+49"}, -1));
}

TEST_F(RoutingEntries, RouteWalkRunsInsideAUserWalk) {
  WriteDatabase(std::string("[Recipient List]\njoe=Joe\nann=Ann\n") + kRouting);
  Entries seen;
  for (std::optional<std::string> user = FirstUser(); user; user = NextUser()) {
    for (const std::string &route : Walk(RouteKind::Dtmf).first) {
      if (route.starts_with(*user + "|")) seen.push_back(route);
    }
  }
  EXPECT_EQ(seen, (Entries{"joe|21", "ann|22"}));
}

TEST_F(RoutingEntries, CsidRouteGoesToTheFirstFreeIndexUnlessPresentInAnyCase) {
  WriteDatabase("[Routing]\nCSID_00000=Joe@X,ACME Fax\nCSID_00001=no comma\nCSID_00003=x,y\n");
  const std::string before = Database();
  EXPECT_EQ(AddCsidRoute("joe@x", "acme fax"), 0);
  EXPECT_EQ(AddCsidRoute("joe@x", "ACME Fax  "), 0);  // the file keeps no trailing blanks
  EXPECT_EQ(Database(), before);
  EXPECT_EQ(AddCsidRoute("", "ACME"), -1);
  EXPECT_EQ(AddCsidRoute("joe@x", " "), -1);
  EXPECT_EQ(AddCsidRoute("ann@x", "ACME Fax"), 0);
  EXPECT_EQ(Database(), before + "CSID_00002=ann@x,ACME Fax\n");
}

}  // namespace
}  // namespace tqv
