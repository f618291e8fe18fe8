// The shipped tqstring.ini: every text the library asks for, in English and German, each taking
// exactly the values its caller formats into it and fitting the room its caller shows.
#include <fstream>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>

#include "config/message_strings.h"
#include "platform/profile.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

constexpr const char *kShippedFile = TQV_DATA_DIR "/tqstring.ini";
// Long enough to show whether a text with the name still fits its room.
constexpr const char *kTypicalMailSystem = "Microsoft Exchange";

constexpr std::size_t kLabel = 20;   // field labels are shown in 20 columns
constexpr std::size_t kTitle = 57;   // titles stand between banners of 57 asterisks
constexpr std::size_t kError = 254;  // error-text and header buffers
constexpr std::size_t kFree = 510;   // GetString's shared buffer

struct ShippedText {
  int number;
  const char *conversions;  // what the caller passes, in order; "" for a text shown as it is
  std::size_t room;         // characters the caller shows
};

constexpr ShippedText kShippedTexts[] = {
    {422, "", kError},   {428, "", kFree},    {620, "", kTitle},   {621, "", kLabel},    {622, "", kLabel},
    {623, "", kLabel},   {624, "", kLabel},   {625, "", kLabel},   {626, "", kLabel},    {627, "", kLabel},
    {628, "", kLabel},   {629, "", kLabel},   {630, "", kLabel},   {631, "%d%d", kFree}, {632, "", kLabel},
    {633, "", kLabel},   {640, "", kFree},    {641, "", kFree},    {642, "", kFree},     {643, "", kFree},
    {644, "", kFree},    {645, "", kFree},    {646, "", kFree},    {647, "", 15},        {648, "", 15},
    {650, "", kTitle},   {651, "", kLabel},   {652, "", kLabel},   {653, "", kLabel},    {654, "", kLabel},
    {655, "", kLabel},   {660, "", 94},       {670, "", kFree},    {671, "", kFree},     {672, "", kFree},
    {673, "", kFree},    {674, "", kFree},    {675, "", kFree},    {676, "", kFree},     {700, "", kError},
    {701, "", kError},   {706, "", 125},      {707, "", kError},   {708, "", kError},    {710, "", kError},
    {711, "", kError},   {712, "", kError},   {713, "", kError},   {714, "", kError},    {715, "", kError},
    {716, "%d", kError}, {717, "%d", kError}, {718, "%s", kError}, {719, "%s", kError},  {720, "%s", kError},
    {800, "", kFree},    {801, "", kFree},    {802, "", kFree},    {803, "", kFree},     {804, "", kFree},
    {806, "", kFree},    {807, "", kFree},    {809, "%d", kFree},  {810, "", kFree},     {811, "%d", kFree},
    {812, "", kFree},    {813, "%d", kFree},  {814, "", kFree},    {815, "%d", kFree},   {816, "%d", kFree},
    {817, "%d", kFree},  {818, "%s", kFree},  {820, "", kFree},    {821, "", kFree},     {822, "", kFree},
    {823, "", kFree},    {824, "", kFree},    {825, "", kFree},    {828, "", kFree},     {900, "", 99},
    {901, "", 99},       {902, "", kFree},    {903, "", kFree},    {904, "%s", kFree},   {905, "%s", kFree},
    {1000, "", 99},      {4400, "", kError},
};

// The conversions of a printf format in order, reduced to length modifier and conversion
// ("%-.100s" gives "%s", "%ld" stays "%ld"); "%%" takes no value. A "*" takes an int and shows
// as "%*"; an unfinished conversion shows as "%?".
std::string Conversions(std::string_view format) {
  std::string result;
  for (std::size_t pos = format.find('%'); pos != std::string_view::npos; pos = format.find('%', pos)) {
    ++pos;
    if (pos < format.size() && format[pos] == '%') {
      ++pos;
      continue;
    }
    while (pos < format.size() &&
           std::string_view("-+ #0123456789.*").find(format[pos]) != std::string_view::npos) {
      if (format[pos] == '*') result += "%*";
      ++pos;
    }
    std::string length;
    while (pos < format.size() && std::string_view("hlLqjzt").find(format[pos]) != std::string_view::npos) {
      length += format[pos++];
    }
    if (pos == format.size()) {
      result += "%?";
      break;
    }
    result += "%" + length + format[pos++];
  }
  return result;
}

std::string ReadBytes(const char *path) {
  std::ifstream in{path, std::ios::binary};
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

struct Language {
  const char *section;
  int number;
};

void PrintTo(const Language &language, std::ostream *out) {
  *out << language.section;
}

class ShippedStringFile : public testing::TempDirTest, public ::testing::WithParamInterface<Language> {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    ResetMessageStringsForTesting();
  }
  void TearDown() override {
    ResetMessageStringsForTesting();
    TempDirTest::TearDown();
  }
};

TEST(FormatConversions, ReduceToWhatTakesAValue) {
  const std::pair<const char *, const char *> cases[] = {
      {"plain", ""},        {"%d of %d", "%d%d"}, {"100%% done", ""},  {"'%-.100s'", "%s"},
      {"%ld bytes", "%ld"}, {"%*d", "%*%d"},      {"ends in %", "%?"}, {"%5.2f%s", "%f%s"},
  };
  for (const auto &[format, expected] : cases)
    EXPECT_EQ(Conversions(format), expected) << format;
}

TEST_P(ShippedStringFile, HoldsEveryTextWithTheValuesItsCallerPasses) {
  const auto [section, language] = GetParam();
  ASSERT_EQ(InitStrings(kTypicalMailSystem, kShippedFile, language), 0);
  for (const ShippedText &text : kShippedTexts) {
    SCOPED_TRACE(std::string(section) + " T" + std::to_string(text.number));
    const std::optional<std::string> raw =
        platform::ProfileLookup(section, "T" + std::to_string(text.number), kShippedFile);
    if (!raw.has_value() || raw->empty()) {
      ADD_FAILURE() << "missing";
      continue;
    }
    if (std::string_view(text.conversions).empty()) {
      // Shown as it is, so a percent sign would show too.
      EXPECT_EQ(raw->find('%'), std::string::npos) << *raw;
    } else {
      EXPECT_EQ(Conversions(*raw), text.conversions) << *raw;
      // A '%' in the mail-system name would turn into a conversion of its own.
      EXPECT_EQ(raw->find("<MAILSYSTEM>"), std::string::npos) << *raw;
      EXPECT_EQ(raw->find("<mailsystem>"), std::string::npos) << *raw;
    }
    EXPECT_LE(LookupString(text.number, 2048).size(), text.room) << LookupString(text.number, 2048);
  }
}

TEST_P(ShippedStringFile, SubjectPrefixesCarryTheirOwnBlankAndTheStationSuitsTheLog) {
  const auto [section, language] = GetParam();
  ASSERT_EQ(InitStrings(kTypicalMailSystem, kShippedFile, language), 0);
  // Subjects put the text right before what follows it.
  for (int number : {900, 901, 903})
    EXPECT_EQ(LookupString(number, 511).back(), ' ') << number;
  // The receive log quotes this text in a comma-separated line.
  EXPECT_EQ(LookupString(660, 95).find_first_of("\","), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Languages, ShippedStringFile,
                         ::testing::Values(Language{"English", kLanguageEnglish},
                                           Language{"German", kLanguageGerman}),
                         [](const auto &info) { return std::string(info.param.section); });

TEST(ShippedStringFileBytes, AreAnsiWithCrLfLineEnds) {
  const std::string bytes = ReadBytes(kShippedFile);
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
