// The message texts: the string file's sections and fallbacks, the mail-system placeholder, the
// cuts to the caller's buffer; and the shipped tqstring.ini, every text the library asks for in
// English and German, each taking exactly the values its caller formats into it and fitting its room.
#include "config/message_strings.h"

#include <optional>
#include <string>
#include <string_view>

#include "platform/profile.h"
#include "support/temp_dir.h"
#include "tqv/check/check_string_file.h"

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

// The placeholder is written <MAILSYSTEM> or <mailsystem>, never in another case; the read is cut to
// the caller's buffer, and to 510 before the name goes in.
TEST_F(MessageStrings, PlaceholderSpellingsAndCutsToTheCallersBufferAnd510BeforeTheNameGoesIn) {
  const std::string longText(600, 'x');
  const std::string lateName(505, 'y');
  const std::string file =
      WriteStrings("[English]\nT1=Fax delivered\nT2=" + longText + "\nT3=<MAILSYSTEM>!\nT4=<MAILSYSTEM>" +
                   longText + "\nT5=" + lateName + "<mailsystem>\nT6=<MailSystem> or <mailsystem>\n" +
                   "T7=<MAILSYSTEM><mailsystem> and <MAILSYSTEM\n");
  ASSERT_EQ(InitStringsByCode("Microsoft Exchange", file, "EN"), 0);
  const std::tuple<int, std::size_t, std::string> cases[] = {
      {1, 5, "Fax "},
      {2, 1000, longText},  // without a placeholder the 510 limit does not apply
      {2, kSharedStringSize, std::string(510, 'x')},
      {3, 14, "Microsoft Exc"},
      {3, 10, "<MAILSYST"},  // the read is cut first, so no placeholder is left
      {4, 2048, "Microsoft Exchange" + std::string(510 - 12, 'x')},
      {5, 2048, lateName + "<mail"},  // only part of the placeholder is left, which stays
      {6, 255, "<MailSystem> or Microsoft Exchange"},
      {7, 255, "Microsoft ExchangeMicrosoft Exchange and <MAILSYSTEM"},
      // Too small for the whole marker: the cut marker is taken as the text, without fallback.
      {4711, 23, "UNKNOWN RESOURCE STRIN"},
  };
  for (const auto &[number, size, expected] : cases)
    EXPECT_EQ(LookupString(number, size), expected) << number << "/" << size;
  // The name keeps 254 characters.
  ASSERT_EQ(InitStringsByCode(std::string(300, 'n'), file, "EN"), 0);
  EXPECT_EQ(LookupString(3, 2048), std::string(254, 'n') + "!");
  // The inserted name is not searched again.
  ASSERT_EQ(InitStringsByCode("<mailsystem>", file, "EN"), 0);
  EXPECT_EQ(LookupString(7, 255), "<mailsystem><mailsystem> and <MAILSYSTEM");
}

constexpr const char *kShippedFile = TQV_DATA_DIR "/tqstring.ini";
// Long enough to show whether a text with the name still fits its room.
constexpr const char *kTypicalMailSystem = "Microsoft Exchange";

constexpr std::size_t kLabel = 20;   // field labels are shown in 20 columns
constexpr std::size_t kTitle = 57;   // titles stand between banners of 57 asterisks
constexpr std::size_t kError = 254;  // error-text and header buffers
constexpr std::size_t kFree = 510;   // GetString's shared buffer

// Texts first..last, each taking the values `conversions` in that order ("dd": two numbers; "" for a
// text shown as it is) and fitting `room` characters, as their callers use them.
struct ShippedTexts {
  int first, last;
  const char *conversions;
  std::size_t room;
};

constexpr ShippedTexts kShippedTexts[] = {
    {422, 422, "", kError},  {428, 428, "", kFree},   {620, 620, "", kTitle},   {621, 630, "", kLabel},
    {631, 631, "dd", kFree}, {632, 633, "", kLabel},  {640, 646, "", kFree},    {647, 648, "", 15},
    {650, 650, "", kTitle},  {651, 655, "", kLabel},  {660, 660, "", 94},       {670, 676, "", kFree},
    {700, 701, "", kError},  {706, 706, "", 125},     {707, 708, "", kError},   {710, 715, "", kError},
    {716, 717, "d", kError}, {718, 720, "s", kError}, {800, 804, "", kFree},    {806, 807, "", kFree},
    {809, 809, "d", kFree},  {810, 810, "", kFree},   {811, 811, "d", kFree},   {812, 812, "", kFree},
    {813, 813, "d", kFree},  {814, 814, "", kFree},   {815, 817, "d", kFree},   {818, 818, "s", kFree},
    {820, 825, "", kFree},   {828, 828, "", kFree},   {900, 901, "", 99},       {902, 903, "", kFree},
    {904, 905, "s", kFree},  {1000, 1000, "", 99},    {4400, 4400, "", kError},
};

using ShippedStringFile = testing::TempDirTest;

TEST_F(ShippedStringFile, HoldsEveryTextWithTheValuesItsCallerPassesInEnglishAndGerman) {
  ResetMessageStringsForTesting();
  for (const auto &[section, language] :
       {std::pair{"English", kLanguageEnglish}, {"German", kLanguageGerman}}) {
    ASSERT_EQ(InitStrings(kTypicalMailSystem, kShippedFile, language), 0);
    for (const ShippedTexts &text : kShippedTexts) {
      for (int number = text.first; number <= text.last; ++number) {
        SCOPED_TRACE(std::string(section) + " T" + std::to_string(number));
        const std::optional<std::string> raw =
            platform::ProfileLookup(section, "T" + std::to_string(number), kShippedFile);
        if (!raw.has_value() || raw->empty()) {
          ADD_FAILURE() << "missing";
          continue;
        }
        if (std::string_view(text.conversions).empty()) {
          // Shown as it is, so a percent sign would show too.
          EXPECT_EQ(raw->find('%'), std::string::npos) << *raw;
        } else {
          EXPECT_EQ(tool::FormatConversions(*raw), text.conversions) << *raw;
          // A '%' in the mail-system name would turn into a conversion of its own.
          EXPECT_EQ(raw->find("<MAILSYSTEM>"), std::string::npos) << *raw;
          EXPECT_EQ(raw->find("<mailsystem>"), std::string::npos) << *raw;
        }
        EXPECT_LE(LookupString(number, 2048).size(), text.room) << LookupString(number, 2048);
      }
    }
    // Subjects put the text right before what follows it.
    for (int number : {900, 901, 903})
      EXPECT_EQ(LookupString(number, 511).back(), ' ') << section << number;
    // The receive log quotes this text in a comma-separated line.
    EXPECT_EQ(LookupString(660, 95).find_first_of("\","), std::string::npos) << section;
  }
  ResetMessageStringsForTesting();
}

TEST_F(ShippedStringFile, BytesAreAnsiWithCrLfLineEnds) {
  const std::string bytes = ReadFile(kShippedFile);
  ASSERT_FALSE(bytes.empty());
  for (std::size_t pos = bytes.find('\n'); pos != std::string::npos; pos = bytes.find('\n', pos + 1)) {
    ASSERT_TRUE(pos > 0 && bytes[pos - 1] == '\r') << "bare line feed at byte " << pos;
  }
  // Windows-1252 umlauts are single bytes; UTF-8 would spell them as 0xC3 and a second byte.
  EXPECT_NE(bytes.find('\xFC'), std::string::npos);  // u umlaut
  for (std::size_t pos = bytes.find('\xC3'); pos != std::string::npos; pos = bytes.find('\xC3', pos + 1)) {
    EXPECT_FALSE(pos + 1 < bytes.size() && (static_cast<unsigned char>(bytes[pos + 1]) & 0xC0) == 0x80)
        << "UTF-8 sequence at byte " << pos;
  }
}

}  // namespace
}  // namespace tqv
