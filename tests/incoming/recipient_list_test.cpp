#include "incoming/recipient_list.h"

#include <gtest/gtest.h>

namespace tqv {
namespace {

std::vector<std::string> Walk(RecipientList &list) {
  std::vector<std::string> names;
  for (auto name = list.First(); name; name = list.Next())
    names.push_back(*name);
  return names;
}

TEST(RecipientList, KeepsFirstOrderAndIgnoresRepeatsAndEmptyNames) {
  RecipientList list;
  EXPECT_FALSE(list.First()) << "an empty list has no first";
  EXPECT_FALSE(list.Next());
  for (const char *name : {"bob", "", "alice", "bob", "Bob"})
    list.Add(name);
  EXPECT_EQ(Walk(list), (std::vector<std::string>{"bob", "alice", "Bob"}));
  EXPECT_TRUE(list.Contains("Bob"));
  EXPECT_FALSE(list.Contains("BOB"));
  EXPECT_EQ(Walk(list).size(), 3u) << "First restarts the walk";
}

TEST(RecipientList, StopsAtItsLimitAndCutsLongNames) {
  RecipientList list;
  for (int i = 0; i < 1100; ++i)
    list.Add("user" + std::to_string(i));
  EXPECT_EQ(list.Count(), RecipientList::kMaxRecipients);
  EXPECT_FALSE(list.Contains("user1024"));

  RecipientList longNames;
  longNames.Add(std::string(300, 'x'));
  longNames.Add(std::string(254, 'x'));  // the same name once cut
  EXPECT_EQ(Walk(longNames), std::vector<std::string>{std::string(254, 'x')});
}

}  // namespace
}  // namespace tqv
