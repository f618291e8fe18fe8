// Per-user settings kept in the administration database.
#include <string>

#include "config/admin_database_fixture.h"
#include "config/blocked_numbers.h"
#include "config/user_details.h"
#include "config/user_properties.h"

namespace tqv {
namespace {

using UserSettings = testing::AdminDatabaseTest;

TEST_F(UserSettings, MissingPropertiesMeanNoFaxingAndTheWholeWordIsWrittenBack) {
  WriteDatabase("[Recipients Properties]\njoe@x=4128\nword=abc\nblank=\n");
  const std::pair<const char *, std::int32_t> cases[] = {
      {"missing", 0x1D00}, {"JOE@X", 4128}, {"word", 0}, {"blank", 0x1D00}};
  for (const auto &[user, expected] : cases)
    EXPECT_EQ(GetUserProperties(user), expected) << user;
  EXPECT_FALSE(HasProperty(GetUserProperties("missing"), UserProperty::SendFaxes));
  SetUserProperties("Joe@X", WithProperty(4128, UserProperty::HighResolution, true));
  EXPECT_EQ(Database(), "[Recipients Properties]\njoe@x=4144\nword=abc\nblank=\n");
}

TEST_F(UserSettings, BlockPatternDigitsMustBeginTheNumberDigits) {
  const std::tuple<const char *, const char *, bool> cases[] = {
      {"0049", "(0049) 30-5", true},
      {"0049", "049 89 1234", false},
      {"0049", "+49 89", false},
      {"+", "", true},
  };
  for (const auto &[pattern, number, blocked] : cases) {
    WriteDatabase(std::string("[Recipients Properties]\njoe=64\n[joe]\nB_00000=") + pattern + "\n");
    EXPECT_EQ(IsNumberBlocked("joe", number), blocked) << pattern << " / " << number;
  }
}

TEST_F(UserSettings, AnyBlockPatternBeforeAGapBlocksOnlyWithTheProperty) {
  const std::pair<const char *, bool> cases[] = {
      {"", false},  // the default properties lack BlockNumbers
      {"joe=7424", false},
      {"joe=65", true},
      {"joe=junk", false},
  };
  for (const auto &[properties, blocked] : cases) {
    WriteDatabase(std::string("[Recipients Properties]\n") + properties +
                  "\n[joe]\nB_00000=0190\nB_00001=0900\nB_00003=0180\n");
    EXPECT_EQ(IsNumberBlocked("JOE", "0900 1"), blocked) << properties;
    EXPECT_FALSE(IsNumberBlocked("joe", "0180 1")) << properties;
  }
}

TEST_F(UserSettings, FaxHeaderOnlyWhenNotEmpty) {
  WriteDatabase("[FaxHeaders]\njoe=ACME Ltd  +49 89 1234\nempty=\n");
  EXPECT_EQ(GetUserFaxHeader("JOE", 5), "ACME");
  EXPECT_EQ(GetUserFaxHeader("joe", 1), std::nullopt);
  EXPECT_EQ(GetUserFaxHeader("empty", 47), std::nullopt);
  EXPECT_EQ(GetUserFaxHeader("missing", 47), std::nullopt);
}

TEST_F(UserSettings, VoicemailBoxAndText) {
  using Entry = std::optional<std::pair<std::string, std::string>>;
  const std::pair<std::string, Entry> cases[] = {
      {"12345|Five digits", std::pair{"1234", "Five digits"}},
      {"||7||text|more", std::pair{"7", "text"}},
      {"1|" + std::string(600, 't'), std::pair{"1", std::string(46, 't')}},
      {"", std::nullopt},
  };
  for (const auto &[value, expected] : cases) {
    WriteDatabase("[VoiceMail]\njoe=" + value + "\n");
    const std::optional<VoicemailEntry> entry = GetUserVoicemail("joe", 47, 47);
    EXPECT_EQ(entry ? Entry(std::pair(entry->box, entry->text)) : std::nullopt, expected) << value;
  }
  WriteDatabase("[VoiceMail]\njoe=12345|x\n");
  EXPECT_EQ(GetUserVoicemail("joe", 3, 47)->box, "12");
}

TEST_F(UserSettings, OcrRatioKeepsLowEightBitsAndIsCappedAtOneHundred) {
  WriteDatabase("[Recipients OCR Ratios]\nr256=256\nr99=99\nr356=356\nneg=-1\nword=high\n");
  const std::pair<const char *, std::int32_t> cases[] = {
      {"missing", 100}, {"r256", 0}, {"r99", 99}, {"r356", 100}, {"neg", 100}, {"word", 0},
  };
  for (const auto &[user, expected] : cases)
    EXPECT_EQ(GetOcrRatio(user), expected) << user;
}

}  // namespace
}  // namespace tqv
