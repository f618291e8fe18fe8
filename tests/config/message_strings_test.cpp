#include "config/message_strings.h"

#include <string>

#include "support/temp_dir.h"

namespace tqv {
namespace {

class MessageStrings : public testing::TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    ResetMessageStringsForTesting();
    file_ = PathOf("tqstring.ini");
  }
  void TearDown() override {
    ResetMessageStringsForTesting();
    TempDirTest::TearDown();
  }

  // Writes the string file with CR LF line ends, as installations ship it.
  void WriteStrings(const std::string &lines) const {
    std::string bytes;
    for (char c : lines) {
      if (c == '\n') bytes += '\r';
      bytes += c;
    }
    WriteFile(file_, bytes);
  }

  std::string file_;
};

constexpr const char *kNineLanguages =
    "[English]\nT1=English\nT2=only English\n"
    "[German]\nT1=German\nT3=\n"
    "[French]\nT1=French\n[Dutch]\nT1=Dutch\n[Italian]\nT1=Italian\n[Swedish]\nT1=Swedish\n"
    "[Polish]\nT1=Polish\n[Spanish]\nT1=Spanish\n[Turkish]\nT1=Turkish\n";

TEST_F(MessageStrings, CodeChoosesTheSectionByItsFirstTwoLettersInAnyCase) {
  WriteStrings(kNineLanguages);
  const std::pair<const char *, const char *> cases[] = {
      {"EN", "English"}, {"ge", "German"},  {"German", "German"}, {"Fr", "French"},  {"du", "Dutch"},
      {"IT", "Italian"}, {"sw", "Swedish"}, {"PL", "Polish"},     {"sp", "Spanish"}, {"TU", "Turkish"},
      {"", "English"},   {"G", "English"},  {"DE", "English"},    {"xx", "English"},
  };
  for (const auto &[code, expected] : cases) {
    ASSERT_EQ(InitStringsByCode("Exchange", file_, code), 0) << code;
    EXPECT_EQ(LookupString(1, 255), expected) << code;
  }
}

TEST_F(MessageStrings, LanguageNumberOutsideTheNineMeansEnglish) {
  WriteStrings(kNineLanguages);
  const std::pair<int, const char *> cases[] = {{kLanguageGerman, "German"},
                                                {kLanguageTurkish, "Turkish"},
                                                {8, "English"},
                                                {0, "English"},
                                                {-7, "English"}};
  for (const auto &[number, expected] : cases) {
    ASSERT_EQ(InitStrings("Exchange", file_, number), 0) << number;
    EXPECT_EQ(LookupString(1, 255), expected) << number;
  }
}

TEST_F(MessageStrings, MissingTextsFallBackToEnglishThenToTheMarker) {
  WriteStrings(kNineLanguages);
  ASSERT_EQ(InitStringsByCode("Exchange", file_, "GE"), 0);
  EXPECT_EQ(LookupString(2, 255), "only English");
  EXPECT_EQ(LookupString(4711, 255), "UNKNOWN RESOURCE STRING: 4711");
  EXPECT_EQ(LookupString(-3, 255), "UNKNOWN RESOURCE STRING: -3");
  // An empty translation is a text of its own, not a missing one.
  EXPECT_EQ(LookupString(3, 255), "");
}

TEST_F(MessageStrings, FileWithoutTheLanguageSectionGivesEnglish) {
  WriteStrings("[English]\nT1=English\n");
  ASSERT_EQ(InitStringsByCode("Exchange", file_, "FR"), 0);
  EXPECT_EQ(LookupString(1, 255), "English");
}

TEST_F(MessageStrings, MissingFileFailsAndKeepsTheEarlierFileButTakesTheName) {
  WriteStrings("[German]\nT1=Neu bei <MAILSYSTEM>\n");
  ASSERT_EQ(InitStringsByCode("Exchange", file_, "GE"), 0);
  EXPECT_EQ(InitStringsByCode("Notes", PathOf("missing.ini"), "EN"), -1);
  EXPECT_EQ(LookupString(1, 255), "Neu bei Notes");
}

TEST_F(MessageStrings, BeforeInitialisationEveryTextIsMissing) {
  EXPECT_EQ(GetString(620), "UNKNOWN RESOURCE STRING: 620");
}

TEST_F(MessageStrings, BothPlaceholderSpellingsTakeTheMailSystemName) {
  WriteStrings(
      "[English]\n"
      "T1=Ask your <MAILSYSTEM> or <mailsystem> administrator\n"
      "T2=<MailSystem> and <MAILSYSTEM\n"
      "T3=<MAILSYSTEM><mailsystem>\n");
  const std::pair<int, const char *> cases[] = {
      {1, "Ask your Exchange or Exchange administrator"},
      {2, "<MailSystem> and <MAILSYSTEM"},
      {3, "ExchangeExchange"},
  };
  ASSERT_EQ(InitStringsByCode("Exchange", file_, "EN"), 0);
  for (const auto &[number, expected] : cases)
    EXPECT_EQ(LookupString(number, 255), expected) << number;

  // The inserted name is not searched again.
  ASSERT_EQ(InitStringsByCode("<mailsystem>", file_, "EN"), 0);
  EXPECT_EQ(LookupString(3, 255), "<mailsystem><mailsystem>");
}

TEST_F(MessageStrings, TextsAreCutToTheCallersBuffer) {
  const std::string longText(600, 'x');
  WriteStrings("[English]\nT1=Fax delivered\nT2=" + longText + "\nT3=<MAILSYSTEM>!\n");
  ASSERT_EQ(InitStringsByCode("Microsoft Exchange", file_, "EN"), 0);
  struct Case {
    int number;
    std::size_t size;
    std::string expected;
  };
  const Case cases[] = {
      {1, 5, "Fax "},
      {1, 1, ""},
      {1, 0, ""},
      {2, 1000, longText},  // without a placeholder the 510 limit does not apply
      {2, kSharedStringSize, std::string(510, 'x')},
      {3, 14, "Microsoft Exc"},
      {3, 10, "<MAILSYST"},  // the read is cut first, so no placeholder is left
      {4711, 11, "UNKNOWN RE"},
      // Too small for the whole marker: the cut marker is taken as the text, without fallback.
      {4711, 23, "UNKNOWN RESOURCE STRIN"},
  };
  for (const Case &c : cases)
    EXPECT_EQ(LookupString(c.number, c.size), c.expected) << c.number << "/" << c.size;
}

TEST_F(MessageStrings, TextWithPlaceholderIsCutTo510BeforeTheNameGoesIn) {
  const std::string tail(600, 'x');
  const std::string lateName(505, 'y');
  WriteStrings("[English]\nT1=<MAILSYSTEM>" + tail + "\nT2=" + lateName + "<mailsystem>\n");
  ASSERT_EQ(InitStringsByCode("AB", file_, "EN"), 0);
  EXPECT_EQ(LookupString(1, 2048), "AB" + std::string(498, 'x'));
  // The cut leaves only part of the placeholder, which then stays as it is.
  EXPECT_EQ(LookupString(2, 2048), lateName + "<mail");
}

TEST_F(MessageStrings, MailSystemNameKeepsAt254Characters) {
  WriteStrings("[English]\nT1=<MAILSYSTEM>!\n");
  ASSERT_EQ(InitStringsByCode(std::string(300, 'n'), file_, "EN"), 0);
  EXPECT_EQ(LookupString(1, 2048), std::string(254, 'n') + "!");
}

TEST_F(MessageStrings, GetStringSharesOneBufferThatTheNextCallReplaces) {
  WriteStrings("[English]\nT901=Failed: \nT902=Fax to:\n");
  ASSERT_EQ(InitStringsByCode("Exchange", file_, "EN"), 0);
  const std::string &first = GetString(901);
  EXPECT_EQ(first, "Failed:");
  const std::string &second = GetString(902);
  EXPECT_EQ(&first, &second);
  EXPECT_EQ(first, "Fax to:");
}

}  // namespace
}  // namespace tqv
