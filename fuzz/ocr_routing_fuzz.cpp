// The recognised-text reader and the phrase match on arbitrary files. The input is the file; its
// first byte also picks the ratio and its first line the phrase. Beyond crashes and sanitizer
// findings it aborts when a kept line or word breaks its limits, when a line does not match its
// own first words, or when a phrase that matches with some ratio fails with a lower one.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz_support.h"
#include "incoming/ocr_matching.h"

namespace {

namespace fs = std::filesystem;

using tqv::fuzz::Fail;

// The file every input is written to.
const std::string &TextFile() {
  static const std::string path = (tqv::fuzz::Sandbox() / "ocr.txt").string();
  return path;
}

void CheckLimits(const std::vector<tqv::OcrWords> &lines) {
  if (lines.size() > tqv::kMaxOcrLines) Fail("more lines than kept");
  for (const tqv::OcrWords &line : lines) {
    if (line.empty() || line.size() > tqv::kMaxOcrLineWords) Fail("a kept line with no or too many words");
    for (const std::string &word : line) {
      if (word.empty() || word.size() > tqv::kMaxOcrWordChars) Fail("a word of a wrong length");
      if (word.find_first_of(tqv::kOcrWordSeparators) != std::string::npos ||
          word.find('\0') != std::string::npos)
        Fail("a separator or NUL inside a word");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char *>(data), size);
  tqv::fuzz::WriteBytes(TextFile(), input);
  const std::optional<std::vector<tqv::OcrWords>> lines = tqv::ReadOcrTextLines(TextFile());
  if (!lines) Fail("an existing file could not be read");
  CheckLimits(*lines);

  const std::int32_t ratio = size > 0 ? static_cast<std::uint8_t>(input[0]) % 101 : 100;
  const tqv::OcrWords phrase = tqv::SplitOcrWords(input.substr(0, input.find('\n')), tqv::kMaxPhraseWords);
  for (const tqv::OcrWords &line : *lines) {
    const std::vector<std::string> own(line.begin(),
                                       line.begin() + std::min(line.size(), tqv::kMaxPhraseWords));
    if (!tqv::PhraseMatches({}, own, line, 100)) Fail("a line does not match its own first words");
    if (tqv::PhraseMatches(phrase, {}, line, ratio) && !tqv::PhraseMatches(phrase, {}, line, 0))
      Fail("a lower ratio matched less");
  }
  return 0;
}
