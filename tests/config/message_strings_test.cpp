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
  }
  void TearDown() override {
    ResetMessageStringsForTesting();
    TempDirTest::TearDown();
  }

  // Writes the string file with CR LF line ends, as installations ship it.
  std::string WriteStrings(const std::string &lines) const {
    WriteFile(PathOf("tqstring.ini"), testing::Crlf(lines));
    return PathOf("tqstring.ini");
  }
};

TEST_F(MessageStrings, SectionComesFromTheCodeInAnyCaseOrTheNumberElseEnglish) {
  const std::string file = WriteStrings(
      "[English]\nT1=English\n[German]\nT1=German\n[French]\nT1=French\n[Dutch]\nT1=Dutch\n"
      "[Italian]\nT1=Italian\n[Swedish]\nT1=Swedish\n[Polish]\nT1=Polish\n[Spanish]\nT1=Spanish\n"
      "[Turkish]\nT1=Turkish\n");
  const std::pair<const char *, const char *> codes[] = {
      {"EN", "English"}, {"ge", "German"},  {"German", "German"}, {"Fr", "French"},  {"du", "Dutch"},
      {"IT", "Italian"}, {"sw", "Swedish"}, {"PL", "Polish"},     {"sp", "Spanish"}, {"TU", "Turkish"},
      {"", "English"},   {"G", "English"},  {"DE", "English"},
  };
  for (const auto &[code, expected] : codes) {
    ASSERT_EQ(InitStringsByCode("Exchange", file, code), 0) << code;
    EXPECT_EQ(LookupString(1, 255), expected) << code;
  }
  const std::pair<int, const char *> numbers[] = {
      {kLanguageTurkish, "Turkish"}, {8, "English"}, {-7, "English"}};
  for (const auto &[number, expected] : numbers) {
    ASSERT_EQ(InitStrings("Exchange", file, number), 0) << number;
    EXPECT_EQ(LookupString(1, 255), expected) << number;
  }
}

TEST_F(MessageStrings, MissingTextsFallBackToEnglishThenToTheMarker) {
  EXPECT_EQ(GetString(620), "UNKNOWN RESOURCE STRING: 620");  // before any file
  const std::string file = WriteStrings("[English]\nT1=English\nT2=only English\n[German]\nT1=German\nT3=\n");
  ASSERT_EQ(InitStringsByCode("Exchange", file, "FR"), 0);  // no such section
  EXPECT_EQ(LookupString(1, 255), "English");
  ASSERT_EQ(InitStringsByCode("Exchange", file, "GE"), 0);
  EXPECT_EQ(LookupString(2, 255), "only English");
  EXPECT_EQ(LookupString(-3, 255), "UNKNOWN RESOURCE STRING: -3");
  // An empty translation is a text of its own, not a missing one.
  EXPECT_EQ(LookupString(3, 255), "");
  // A missing file fails and keeps the earlier file, but the name is taken.
  WriteStrings("[German]\nT1=Neu bei <MAILSYSTEM>\n");
  EXPECT_EQ(InitStringsByCode("Notes", PathOf("missing.ini"), "EN"), -1);
  EXPECT_EQ(LookupString(1, 255), "Neu bei Notes");
}

TEST_F(MessageStrings, BothPlaceholderSpellingsTakeTheMailSystemName) {
  const std::string file = WriteStrings(
      "[English]\nT1=Ask your <MAILSYSTEM> or <mailsystem> administrator\n"
      "T2=<MailSystem> and <MAILSYSTEM\nT3=<MAILSYSTEM><mailsystem>\n");
  ASSERT_EQ(InitStringsByCode("Exchange", file, "EN"), 0);
  EXPECT_EQ(LookupString(1, 255), "Ask your Exchange or Exchange administrator");
  EXPECT_EQ(LookupString(2, 255), "<MailSystem> and <MAILSYSTEM");
  EXPECT_EQ(LookupString(3, 255), "ExchangeExchange");
  // The inserted name is not searched again.
  ASSERT_EQ(InitStringsByCode("<mailsystem>", file, "EN"), 0);
  EXPECT_EQ(LookupString(3, 255), "<mailsystem><mailsystem>");
}

TEST_F(MessageStrings, TextsAreCutToTheCallersBufferAnd510BeforeTheNameGoesIn) {
  const std::string longText(600, 'x');
  const std::string lateName(505, 'y');
  const std::string file =
      WriteStrings("[English]\nT1=Fax delivered\nT2=" + longText + "\nT3=<MAILSYSTEM>!\nT4=<MAILSYSTEM>" +
                   longText + "\nT5=" + lateName + "<mailsystem>\n");
  ASSERT_EQ(InitStringsByCode("Microsoft Exchange", file, "EN"), 0);
  const std::tuple<int, std::size_t, std::string> cases[] = {
      {1, 5, "Fax "},
      {2, 1000, longText},  // without a placeholder the 510 limit does not apply
      {2, kSharedStringSize, std::string(510, 'x')},
      {3, 14, "Microsoft Exc"},
      {3, 10, "<MAILSYST"},  // the read is cut first, so no placeholder is left
      {4, 2048, "Microsoft Exchange" + std::string(510 - 12, 'x')},
      {5, 2048, lateName + "<mail"},  // only part of the placeholder is left, which stays
      // Too small for the whole marker: the cut marker is taken as the text, without fallback.
      {4711, 23, "UNKNOWN RESOURCE STRIN"},
  };
  for (const auto &[number, size, expected] : cases)
    EXPECT_EQ(LookupString(number, size), expected) << number << "/" << size;
  // The name keeps 254 characters.
  ASSERT_EQ(InitStringsByCode(std::string(300, 'n'), file, "EN"), 0);
  EXPECT_EQ(LookupString(3, 2048), std::string(254, 'n') + "!");
}

TEST_F(MessageStrings, GetStringSharesOneBufferThatTheNextCallReplaces) {
  ASSERT_EQ(InitStringsByCode("Exchange", WriteStrings("[English]\nT901=Failed: \nT902=Fax to:\n"), "EN"), 0);
  const std::string &first = GetString(901);
  EXPECT_EQ(first, "Failed:");
  const std::string &second = GetString(902);
  EXPECT_EQ(&first, &second);
  EXPECT_EQ(first, "Fax to:");
}

}  // namespace
}  // namespace tqv
