#include "config/user_details.h"

#include <string>

#include "config/admin_database_fixture.h"

namespace tqv {
namespace {

using UserDetails = testing::AdminDatabaseTest;

TEST_F(UserDetails, FaxHeaderOnlyWhenNotEmpty) {
  WriteDatabase("[FaxHeaders]\njoe=ACME Ltd  +49 89 1234\nempty=\n");
  EXPECT_EQ(GetUserFaxHeader("JOE", 5), "ACME");
  EXPECT_EQ(GetUserFaxHeader("joe", 1), std::nullopt);
  EXPECT_EQ(GetUserFaxHeader("empty", 47), std::nullopt);
  EXPECT_EQ(GetUserFaxHeader("missing", 47), std::nullopt);
}

TEST_F(UserDetails, VoicemailBoxAndText) {
  using Entry = std::optional<std::pair<std::string, std::string>>;
  const std::pair<std::string, Entry> cases[] = {
      {"12345|Five digits", std::pair{"1234", "Five digits"}},
      {"|7", std::pair{"7", ""}},
      {"||7||text|more", std::pair{"7", "text"}},
      {"abc|not a number", std::pair{"abc", "not a number"}},
      {"1|" + std::string(600, 't'), std::pair{"1", std::string(46, 't')}},
      {"|||", std::nullopt},
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

TEST_F(UserDetails, OcrRatioKeepsLowEightBitsAndIsCappedAtOneHundred) {
  WriteDatabase("[Recipients OCR Ratios]\nr150=150\nr256=256\nr99=99\nr356=356\nneg=-1\nword=high\n");
  const std::pair<const char *, std::int32_t> cases[] = {
      {"missing", 100}, {"r150", 100}, {"r256", 0}, {"r99", 99}, {"r356", 100}, {"neg", 100}, {"word", 0},
  };
  for (const auto &[user, expected] : cases) {
    EXPECT_EQ(GetOcrRatio(user), expected) << user;
  }
}

}  // namespace
}  // namespace tqv
