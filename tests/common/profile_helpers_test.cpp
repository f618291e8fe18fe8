#include "common/profile_helpers.h"

#include <limits>

#include "platform/profile.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

class ProfileHelpers : public testing::TempDirTest {};

TEST_F(ProfileHelpers, GetProfileLongReadsLikeAtolButHoldsOverflowAtTheEnds) {
  const std::string file = PathOf("TEST.INI");
  EXPECT_EQ(GetProfileLong("Limits", "MaxFiles", -5, file), -5);
  ASSERT_TRUE(WriteProfileInt("Limits", "MaxFiles", -7, file));
  EXPECT_EQ(GetProfileLong("Limits", "MaxFiles", 0, file), -7);

  constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
  const std::pair<const char *, std::int32_t> cases[] = {{"-42abc", -42},
                                                         {"abc", 0},
                                                         {"2147483647", kMax},
                                                         {"99999999999999999999", kMax},
                                                         {"-99999999999999999999", kMin}};
  for (const auto &[value, expected] : cases) {
    ASSERT_TRUE(platform::ProfileWriteString("Limits", "MaxFiles", std::string_view(value), file));
    EXPECT_EQ(GetProfileLong("Limits", "MaxFiles", 5, file), expected) << value;
  }
}

}  // namespace
}  // namespace tqv
