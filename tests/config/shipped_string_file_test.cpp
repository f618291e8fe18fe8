// The shipped tqstring.ini: every text the library asks for, in English and German, each taking
// exactly the values its caller formats into it and fitting the room its caller shows.
#include <optional>
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

// Texts first..last, each taking the values `conversions` in that order ("" for a text shown as it
// is) and fitting `room` characters, as their callers use them.
struct ShippedTexts {
  int first, last;
  const char *conversions;
  std::size_t room;
};

constexpr ShippedTexts kShippedTexts[] = {
    {422, 422, "", kError},    {428, 428, "", kFree},    {620, 620, "", kTitle},   {621, 630, "", kLabel},
    {631, 631, "%d%d", kFree}, {632, 633, "", kLabel},   {640, 646, "", kFree},    {647, 648, "", 15},
    {650, 650, "", kTitle},    {651, 655, "", kLabel},   {660, 660, "", 94},       {670, 676, "", kFree},
    {700, 701, "", kError},    {706, 706, "", 125},      {707, 708, "", kError},   {710, 715, "", kError},
    {716, 717, "%d", kError},  {718, 720, "%s", kError}, {800, 804, "", kFree},    {806, 807, "", kFree},
    {809, 809, "%d", kFree},   {810, 810, "", kFree},    {811, 811, "%d", kFree},  {812, 812, "", kFree},
    {813, 813, "%d", kFree},   {814, 814, "", kFree},    {815, 817, "%d", kFree},  {818, 818, "%s", kFree},
    {820, 825, "", kFree},     {828, 828, "", kFree},    {900, 901, "", 99},       {902, 903, "", kFree},
    {904, 905, "%s", kFree},   {1000, 1000, "", 99},     {4400, 4400, "", kError},
};

// The conversions of a printf format in order, reduced to length modifier and conversion
// ("%-.100s" gives "%s"); "%%" takes no value, "*" shows as "%*", an unfinished one as "%?".
std::string Conversions(std::string_view format) {
  std::string result;
  for (std::size_t pos = format.find('%'); pos != std::string_view::npos; pos = format.find('%', pos)) {
    if (++pos < format.size() && format[pos] == '%') {
      ++pos;
      continue;
    }
    for (; pos < format.size() &&
           std::string_view("-+ #0123456789.*").find(format[pos]) != std::string_view::npos;
         ++pos)
      if (format[pos] == '*') result += "%*";
    const std::size_t start = pos;
    while (pos < format.size() && std::string_view("hlLqjzt").find(format[pos]) != std::string_view::npos)
      ++pos;
    if (pos == format.size()) return result + "%?";
    result += "%" + std::string(format.substr(start, pos + 1 - start));
    ++pos;
  }
  return result;
}

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
          EXPECT_EQ(Conversions(*raw), text.conversions) << *raw;
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
