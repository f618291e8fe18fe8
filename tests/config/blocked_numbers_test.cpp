#include "config/blocked_numbers.h"

#include <string>

#include "config/admin_database_fixture.h"

namespace tqv {
namespace {

using BlockedNumbers = testing::AdminDatabaseTest;

TEST_F(BlockedNumbers, PatternDigitsMustBeginTheNumberDigits) {
  struct Case {
    const char *pattern;
    const char *number;
    bool blocked;
  };
  const Case cases[] = {
      {"0049", "0049 89 1234", true},
      {"0049", "(0049) 30-5", true},
      {"0049", "049 89 1234", false},
      {"0049", "004", false},
      {"0049", "+49 89", false},
      {"+", "0049 89 1234", true},
      {"+", "", true},
      {"(0190) *", "0190-1", true},
      {"0190", "0180 90", false},
  };
  for (const Case &c : cases) {
    WriteDatabase(std::string("[Recipients Properties]\njoe=64\n[joe]\nB_00000=") + c.pattern + "\n");
    EXPECT_EQ(IsNumberBlocked("joe", c.number), c.blocked) << c.pattern << " / " << c.number;
  }
}

TEST_F(BlockedNumbers, AnyPatternBeforeAGapBlocksOnlyWithTheProperty) {
  const std::pair<const char *, bool> cases[] = {
      {"", false},  // the default properties lack BlockNumbers
      {"joe=7424", false}, {"joe=65", true}, {"joe=-1", true}, {"joe=junk", false},
  };
  for (const auto &[properties, blocked] : cases) {
    WriteDatabase(std::string("[Recipients Properties]\n") + properties +
                  "\n[joe]\nB_00000=0190\nB_00001=0900\nB_00003=0180\n");
    EXPECT_EQ(IsNumberBlocked("JOE", "0900 1"), blocked) << properties;
    EXPECT_FALSE(IsNumberBlocked("joe", "0180 1")) << properties;
  }
}

}  // namespace
}  // namespace tqv
