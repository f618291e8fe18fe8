// The walks over the administration database: users and routing entries.
#include "config/user_list.h"

#include <string>
#include <vector>

#include "config/admin_database_fixture.h"
#include "config/routing_entries.h"

namespace tqv {
namespace {

using UserList = testing::AdminDatabaseTest;
using Entries = std::vector<std::string>;

Entries AllUsers() {
  Entries users;
  for (std::optional<std::string> user = FirstUser(); user; user = NextUser())
    users.push_back(*user);
  return users;
}

// Every entry of the kind, "user|value", and the result that ended the walk.
std::pair<Entries, int> Walk(RouteKind kind, std::size_t size = 255) {
  Entries entries;
  RouteEntry entry;
  int result = FirstRoute(kind, size, size, entry);
  for (; result == kListEntry; result = NextRoute(size, size, entry))
    entries.push_back(entry.user + "|" + entry.value);
  return {entries, result};
}

TEST_F(UserList, UsersAreTheKeysOfRecipientListInFileOrder) {
  EXPECT_EQ(AllUsers(), Entries{});
  WriteDatabase(
      "[Recipients Properties]\nghost=1\n[recipient list]\nzoe@x=Zoe\nann[2]@x=Ann\n; note\nbob@x=\n");
  EXPECT_EQ(AllUsers(), (Entries{"zoe@x", "ann[2]@x", "bob@x"}));
  EXPECT_EQ(GetUserFullName("ANN[2]@X", 95), "Ann");
  EXPECT_EQ(GetUserFullName("zoe@x", 3), "Zo");
  EXPECT_EQ(GetUserFullName("nobody@x", 95), "nobody@x");
}

TEST_F(UserList, NamesBeyondTheListBufferAreNotSeen) {
  // 2000 names of 9 characters need 20000 bytes; the buffer keeps 16378 of them.
  std::string lines = "[Recipient List]\n";
  for (int i = 0; i < 2000; ++i)
    lines += "user" + std::to_string(10000 + i) + "=U\n";
  WriteDatabase(lines);
  const Entries users = AllUsers();
  ASSERT_EQ(users.size(), 1638u);
  EXPECT_EQ(users[1636], "user11636");
  EXPECT_EQ(users[1637], "user1163");
}

TEST_F(UserList, EachRouteKindIsItsOwnListEndedByAGapOrAnEntryWithoutComma) {
  WriteDatabase(
      "[Recipient List]\njoe=Joe\nann=Ann\n"
      "[Routing]\n"
      "csid_00000=joe,+49 89 1234\nCSID_00001=no comma\nCSID_00002=ann,+1 555\n"
      "OCRGR_00001=joe,Invoices\nOCRKW_00000=ann,order, delivery\nOCRKW_00001=\nOCRKW_00002=joe,late\n"
      "UNKNOWNROUTEITEM00000=bob,odd\n");
  EXPECT_EQ(Walk(RouteKind::Csid), std::pair(Entries{"joe|+49 89 1234"}, -1));
  EXPECT_EQ(Walk(RouteKind::OcrGroup), std::pair(Entries{}, 0));
  EXPECT_EQ(Walk(RouteKind::OcrKeyword), std::pair(Entries{"ann|order, delivery"}, 0));
  EXPECT_EQ(Walk(static_cast<RouteKind>(7)), std::pair(Entries{"bob|odd"}, 0));
  EXPECT_EQ(Walk(RouteKind::Csid, 4), std::pair(Entries{"joe|+49"}, -1));
}

TEST_F(UserList, CsidRouteGoesToTheFirstFreeIndexUnlessPresentInAnyCase) {
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
