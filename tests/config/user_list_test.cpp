#include "config/user_list.h"

#include <string>
#include <vector>

#include "config/admin_database_fixture.h"

namespace tqv {
namespace {

using UserList = testing::AdminDatabaseTest;

std::vector<std::string> AllUsers() {
  std::vector<std::string> users;
  for (std::optional<std::string> user = FirstUser(); user; user = NextUser())
    users.push_back(*user);
  return users;
}

TEST_F(UserList, UsersAreTheKeysOfRecipientListInFileOrder) {
  EXPECT_EQ(AllUsers(), std::vector<std::string>{});
  WriteDatabase(
      "[Recipients Properties]\nghost=1\n[recipient list]\nzoe@x=Zoe\nann[2]@x=Ann\n; note\nbob@x=\n");
  EXPECT_EQ(AllUsers(), (std::vector<std::string>{"zoe@x", "ann[2]@x", "bob@x"}));
  EXPECT_EQ(GetUserFullName("ANN[2]@X", 95), "Ann");
  EXPECT_EQ(GetUserFullName("zoe@x", 3), "Zo");
  EXPECT_EQ(GetUserFullName("nobody@x", 95), "nobody@x");
}

TEST_F(UserList, CursorStaysAtTheEndAndKeepsItsNamesUntilTheNextFirstUser) {
  WriteDatabase("[Recipient List]\na=A\nb=B\n");
  EXPECT_EQ(NextUser(), std::nullopt);
  EXPECT_EQ(FirstUser(), "a");
  WriteDatabase("[Recipient List]\nc=C\n");
  EXPECT_EQ(NextUser(), "b");
  EXPECT_EQ(NextUser(), std::nullopt);
  EXPECT_EQ(NextUser(), std::nullopt);
  EXPECT_EQ(FirstUser(), "c");
}

TEST_F(UserList, NamesBeyondTheListBufferAreNotSeen) {
  // 2000 names of 9 characters need 20000 bytes; the buffer keeps 16378 of them.
  std::string lines = "[Recipient List]\n";
  for (int i = 0; i < 2000; ++i)
    lines += "user" + std::to_string(10000 + i) + "=U\n";
  WriteDatabase(lines);
  const std::vector<std::string> users = AllUsers();
  ASSERT_EQ(users.size(), 1638u);
  EXPECT_EQ(users[1636], "user11636");
  EXPECT_EQ(users[1637], "user1163");
}

}  // namespace
}  // namespace tqv
