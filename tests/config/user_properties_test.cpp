#include "config/user_properties.h"

#include <string>

#include "config/admin_database_fixture.h"

namespace tqv {
namespace {

using UserProperties = testing::AdminDatabaseTest;

TEST_F(UserProperties, MissingEntryMeansNoFaxingAndTheWholeWordIsWrittenBack) {
  WriteDatabase("[Recipients Properties]\njoe@x=4128\nword=abc\nblank=\n");
  const std::pair<const char *, std::int32_t> cases[] = {
      {"missing", 0x1D00}, {"JOE@X", 4128}, {"word", 0}, {"blank", 0x1D00}};
  for (const auto &[user, expected] : cases) {
    EXPECT_EQ(GetUserProperties(user), expected) << user;
  }
  EXPECT_FALSE(HasProperty(GetUserProperties("missing"), UserProperty::SendFaxes));
  SetUserProperties("Joe@X", WithProperty(4128, UserProperty::HighResolution, true));
  EXPECT_EQ(Database(), "[Recipients Properties]\njoe@x=4144\nword=abc\nblank=\n");
}

}  // namespace
}  // namespace tqv
