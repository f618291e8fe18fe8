// Words found by character recognition in a received fax, and the fuzzy match of a user's phrases
// against them. The recognised text comes from outside: any bytes, any length; only the first
// lines with words are kept, and a file that cannot be opened simply yields nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tqv {

// What is kept of the recognised text: lines with words, words per line, characters per word.
inline constexpr std::size_t kMaxOcrLines = 23;
inline constexpr std::size_t kMaxOcrLineWords = 15;
inline constexpr std::size_t kMaxOcrWordChars = 47;
// A longer line is read on as a line of its own.
inline constexpr std::size_t kOcrReadChars = 1022;
// A phrase of a routing entry, and how many a user may have of each kind.
inline constexpr std::size_t kMaxPhraseWords = 7;
inline constexpr std::size_t kMaxUserPhrases = 47;
// Any run of these ends a word: comma, full stop, semicolon, colon, plus, minus, tab, line feed, blank.
inline constexpr std::string_view kOcrWordSeparators = ",.;:+-\t\n ";

using OcrWords = std::vector<std::string>;

// At most `maxWords` words of the text, each cut to kMaxOcrWordChars characters.
OcrWords SplitOcrWords(std::string_view text, std::size_t maxWords);

// The first kMaxOcrLines lines of the file that hold words, read as text; nullopt when the file
// cannot be opened. A read error ends the text where it happened.
std::optional<std::vector<OcrWords>> ReadOcrTextLines(std::string_view path);

// Differing characters (letter case ignored) over the common length, plus the difference in
// length: INVOICE and INV0ICE are 1 apart, ACME and ACMECORP 4.
std::size_t WordDistance(std::string_view left, std::string_view right);

// Whether the phrase made of `lead` followed by `words` matches the line at some start position,
// with (100 - ratio) percent of the phrase's characters allowed to differ in total. Phrase
// words beyond the end of the line are not counted.
bool PhraseMatches(std::span<const std::string> lead, std::span<const std::string> words,
                   std::span<const std::string> line, std::int32_t ratio);

}  // namespace tqv
