#include "common/profile_helpers.h"

#include <limits>

#include "platform/profile.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

class ProfileHelpers : public testing::TempDirTest {};

TEST_F(ProfileHelpers, GetProfileLongReadsLikeAtol) {
  const std::string file = PathOf("TEST.INI");
  const std::pair<const char *, std::int32_t> cases[] = {
      {"-42abc", -42},
      {"+17", 17},
      {"abc", 0},
      {"", 0},
      {"2147483647", std::numeric_limits<std::int32_t>::max()},
      {"-2147483648", std::numeric_limits<std::int32_t>::min()},
      {"99999999999999999999", std::numeric_limits<std::int32_t>::max()},
      {"-99999999999999999999", std::numeric_limits<std::int32_t>::min()},
  };
  for (const auto &[value, expected] : cases) {
    ASSERT_TRUE(platform::ProfileWriteString("Limits", "MaxFiles", std::string_view(value), file));
    EXPECT_EQ(GetProfileLong("Limits", "MaxFiles", 5, file), expected) << value;
  }
}

TEST_F(ProfileHelpers, MissingKeyGivesTheDefaultAndWrittenValuesReadBack) {
  const std::string file = PathOf("TEST.INI");
  EXPECT_EQ(GetProfileLong("Limits", "MaxFiles", -5, file), -5);
  ASSERT_TRUE(WriteProfileInt("Limits", "MaxFiles", -7, file));
  EXPECT_EQ(platform::ProfileLookup("Limits", "MaxFiles", file), "-7");
  EXPECT_EQ(GetProfileLong("Limits", "MaxFiles", 0, file), -7);
}

}  // namespace
}  // namespace tqv
