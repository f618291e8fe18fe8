// String-file checks. Missing texts are gathered into one finding, so a file without a section
// gives one line, not a hundred.
#include "tqv/check/check_string_file.h"

#include <cctype>

#include "config/message_strings.h"

namespace tqv::tool {

namespace {

// The text numbers in use, each range with the values its callers format into it ("" for a text
// shown as it is).
struct TextRange {
  int first, last;
  std::string_view conversions;
};

constexpr TextRange kTextsInUse[] = {
    {422, 422, ""},  {428, 428, ""},  {620, 630, ""},  {631, 631, "dd"}, {632, 633, ""},   {640, 648, ""},
    {650, 655, ""},  {660, 660, ""},  {670, 676, ""},  {700, 701, ""},   {706, 708, ""},   {710, 715, ""},
    {716, 717, "d"}, {718, 720, "s"}, {800, 804, ""},  {806, 807, ""},   {809, 809, "d"},  {810, 810, ""},
    {811, 811, "d"}, {812, 812, ""},  {813, 813, "d"}, {814, 814, ""},   {815, 817, "d"},  {818, 818, "s"},
    {820, 825, ""},  {828, 828, ""},  {900, 903, ""},  {904, 905, "s"},  {1000, 1000, ""}, {4400, 4400, ""},
};

// Room enough for any text of the file: nothing is cut before it is checked.
constexpr std::size_t kWholeText = 4096;

// "T620, T622-T625" from sorted numbers.
std::string NumberRanges(const std::vector<int> &numbers) {
  std::string text;
  for (std::size_t i = 0; i < numbers.size();) {
    std::size_t last = i;
    while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1)
      ++last;
    if (!text.empty()) text += ", ";
    text += "T" + std::to_string(numbers[i]);
    if (last > i) text += "-T" + std::to_string(numbers[last]);
    i = last + 1;
  }
  return text;
}

std::string LanguageName(std::string_view code) {
  return code.empty() ? std::string("English") : "'" + std::string(code) + "'";
}

// "%d, %d" for "dd".
std::string Described(std::string_view conversions) {
  std::string text;
  for (char conversion : conversions) {
    if (!text.empty()) text += ", ";
    text += '%';
    text += conversion;
  }
  return text;
}

}  // namespace

std::string FormatConversions(std::string_view format) {
  std::string conversions;
  for (std::size_t pos = format.find('%'); pos != std::string_view::npos; pos = format.find('%', pos)) {
    pos = format.find_first_not_of("-+ #0123456789.", pos + 1);
    if (pos != std::string_view::npos) pos = format.find_first_not_of("hlLqjzt", pos);
    if (pos == std::string_view::npos) return conversions + '?';
    const char conversion = format[pos++];
    if (conversion == '%') continue;
    conversions += conversion == 'i' ? 'd' : (conversion == 'd' || conversion == 's') ? conversion : '?';
  }
  return conversions;
}

void CheckStringFile(std::string_view mailSystem, std::string_view stringFile, std::string_view language,
                     CheckReport &report) {
  if (InitStringsByCode(mailSystem, stringFile, language) != 0) {
    report.Error("string file '" + std::string(stringFile) + "' does not exist: the library will not start");
    return;
  }
  std::string upperCode;
  for (char c : language.substr(0, 2))
    upperCode += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  if (!language.empty() && upperCode != "EN" && LanguageNumberForCode(language) == kLanguageEnglish)
    report.Warning("[Misc] Language '" + std::string(language) +
                   "' names no language of the string file: texts come in English");

  const std::string unknown = std::string(kUnknownResourceString) + ": ";
  std::vector<int> missing;
  for (const TextRange &range : kTextsInUse) {
    for (int number = range.first; number <= range.last; ++number) {
      const std::string text = LookupString(number, kWholeText);
      if (text.starts_with(unknown)) {
        missing.push_back(number);
        continue;
      }
      // Texts shown as they are may hold a per cent sign; only formats must match their values.
      if (range.conversions.empty()) continue;
      const std::string found = FormatConversions(text);
      if (found != range.conversions)
        report.Warning("string file: T" + std::to_string(number) + " in " + LanguageName(language) +
                       " should take " + Described(range.conversions) + " but reads \"" + text + "\"");
    }
  }
  if (!missing.empty())
    report.Error("string file: no text in " + LanguageName(language) + " or English for " +
                 NumberRanges(missing));
}

}  // namespace tqv::tool
