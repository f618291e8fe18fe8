// Every text that reaches a user, looked up by number in the string file tqstring.ini: in the
// language chosen at start-up, else in English, with the mail-system name put in for its
// placeholder. A lookup never fails: a missing text reads "UNKNOWN RESOURCE STRING: <number>".
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tqv {

// Windows primary language identifiers of the languages a string file may hold.
inline constexpr int kLanguageGerman = 7;
inline constexpr int kLanguageEnglish = 9;
inline constexpr int kLanguageSpanish = 10;
inline constexpr int kLanguageFrench = 12;
inline constexpr int kLanguageItalian = 16;
inline constexpr int kLanguageDutch = 19;
inline constexpr int kLanguagePolish = 21;
inline constexpr int kLanguageSwedish = 29;
inline constexpr int kLanguageTurkish = 31;

// What a lookup reads when neither the language section nor "English" holds the number.
inline constexpr std::string_view kUnknownResourceString = "UNKNOWN RESOURCE STRING";
// Room of GetString's shared buffer, NUL included: its texts have at most 510 characters.
inline constexpr std::size_t kSharedStringSize = 511;

// The language number of a settings code such as "GE": its first two characters, in any letter
// case. Every code the string file has no section for gives kLanguageEnglish.
int LanguageNumberForCode(std::string_view code);

// Stores the mail-system name (254 characters) for the placeholders; then, when the string file
// exists, its path (259) and the section of the language, where an unknown number means
// "English", and gives 0. Gives -1 when the string file is missing; the earlier file and
// section then stay.
int InitStrings(std::string_view mailSystem, std::string_view stringFile, int languageNumber);
// InitStrings with the language number of a settings code.
int InitStringsByCode(std::string_view mailSystem, std::string_view stringFile, std::string_view code);

// The text of `number` as a buffer of `size` bytes would hold it: at most size-1 characters.
std::string LookupString(int number, std::size_t size);

// LookupString into the one shared buffer of kSharedStringSize bytes. The next call replaces what
// the returned reference shows; keep a copy to hold on to a text.
const std::string &GetString(int number);

// Forgets the name, the file and the section, and empties the shared buffer.
void ResetMessageStringsForTesting();

}  // namespace tqv
