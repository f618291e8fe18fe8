// Localised texts by number. The state is set once at start-up and only read afterwards; a string
// file that cannot be read makes every lookup give the text for a missing number.
#include "config/message_strings.h"

#include <string>
#include <string_view>
#include <utility>

#include "common/path_helpers.h"
#include "common/text_limits.h"
#include "platform/profile.h"

namespace tqv {

namespace {

constexpr std::string_view kEnglishSection = "English";
// A text with a placeholder is cut to this length before the name goes in.
constexpr std::size_t kMaxPlaceholderText = 510;
// Exactly these two spellings; any other mixture of case stays as written.
constexpr std::string_view kPlaceholders[] = {"<MAILSYSTEM>", "<mailsystem>"};

struct Language {
  std::string_view code;  // upper case
  int number;
  std::string_view section;
};

constexpr Language kLanguages[] = {
    {"EN", kLanguageEnglish, "English"}, {"GE", kLanguageGerman, "German"},
    {"FR", kLanguageFrench, "French"},   {"DU", kLanguageDutch, "Dutch"},
    {"IT", kLanguageItalian, "Italian"}, {"SW", kLanguageSwedish, "Swedish"},
    {"PL", kLanguagePolish, "Polish"},   {"SP", kLanguageSpanish, "Spanish"},
    {"TU", kLanguageTurkish, "Turkish"},
};

// The string-lookup state of the process: set by InitStrings, read by every lookup.
struct MessageStringState {
  std::string mailSystem;
  std::string stringFile;
  std::string section{kEnglishSection};
  std::string shared;  // GetString's buffer
};

MessageStringState &State() {
  static MessageStringState state;
  return state;
}

// ASCII only: the code is compared like the runtime's case-blind compare, whatever the code page.
char UpperAscii(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string_view SectionOf(int languageNumber) {
  for (const Language &language : kLanguages) {
    if (language.number == languageNumber) return language.section;
  }
  return kEnglishSection;
}

std::string ReadText(std::string_view section, const std::string &key, std::size_t size) {
  return platform::ProfileReadString(section, key, kUnknownResourceString, size, State().stringFile);
}

std::size_t PlaceholderAt(const std::string &text, std::size_t pos) {
  for (std::string_view placeholder : kPlaceholders) {
    if (text.compare(pos, placeholder.size(), placeholder) == 0) return placeholder.size();
  }
  return 0;
}

// One pass from left to right, so a name that itself holds a placeholder is not expanded again.
std::string InsertMailSystem(std::string text, std::string_view name, std::size_t limit) {
  bool hasPlaceholder = false;
  for (std::string_view placeholder : kPlaceholders) {
    hasPlaceholder = hasPlaceholder || text.find(placeholder) != std::string::npos;
  }
  if (!hasPlaceholder) return text;

  CutText(text, kMaxPlaceholderText);
  std::string result;
  for (std::size_t pos = 0; pos < text.size() && result.size() < limit;) {
    if (const std::size_t length = PlaceholderAt(text, pos); length != 0) {
      result += name;
      pos += length;
    } else {
      result += text[pos++];
    }
  }
  return CutText(result, limit);
}

}  // namespace

int LanguageNumberForCode(std::string_view code) {
  if (code.size() < 2) return kLanguageEnglish;
  for (const Language &language : kLanguages) {
    if (UpperAscii(code[0]) == language.code[0] && UpperAscii(code[1]) == language.code[1]) {
      return language.number;
    }
  }
  return kLanguageEnglish;
}

int InitStrings(std::string_view mailSystem, std::string_view stringFile, int languageNumber) {
  MessageStringState &state = State();
  state.mailSystem = mailSystem;
  CutText(state.mailSystem, kMaxName);
  if (!FileExists(stringFile)) return -1;
  state.stringFile = stringFile;
  CutText(state.stringFile, kMaxPath);
  state.section = SectionOf(languageNumber);
  return 0;
}

int InitStringsByCode(std::string_view mailSystem, std::string_view stringFile, std::string_view code) {
  return InitStrings(mailSystem, stringFile, LanguageNumberForCode(code));
}

std::string LookupString(int number, std::size_t size) {
  const MessageStringState &state = State();
  // Appended rather than "T" + ...: GCC 12 warns falsely (-Wrestrict) on that form at -O3.
  std::string key = "T";
  key += std::to_string(number);
  // The marker is compared in full, so a buffer too small to hold it gets the cut marker as text.
  std::string text = ReadText(state.section, key, size);
  if (text == kUnknownResourceString) text = ReadText(kEnglishSection, key, size);
  if (text == kUnknownResourceString) {
    text = std::string(kUnknownResourceString) + ": " + std::to_string(number);
    CutText(text, CharsInBuffer(size));
  }
  return InsertMailSystem(std::move(text), state.mailSystem, CharsInBuffer(size));
}

const std::string &GetString(int number) {
  MessageStringState &state = State();
  state.shared = LookupString(number, kSharedStringSize);
  return state.shared;
}

void ResetMessageStringsForTesting() {
  State() = MessageStringState{};
}

}  // namespace tqv
