#include "incoming/ocr_matching.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace tqv {
namespace {

TEST(OcrMatching, PhraseMatchesWithinTheRatioAllowance) {
  const struct {
    std::int32_t ratio;
    std::string lead, phrase, line;
    bool matches;
  } cases[] = {
      {100, "", "INVOICE", "Your invoice of May", true},  // letter case never counts
      {100, "", "INVOICE", "Your INV0ICE of May", false},
      // 17 characters at 80: (100 - 80) * 17 / 100 = 3 differing characters allowed in total.
      {80, "", "INVOICE DEPARTMENT", "to the INV0ICE DEPARTNENX", true},
      {80, "", "INVOICE DEPARTMENT", "to the INV0ICE DEPAXTNENX", false},
      {50, "", "ACME", "ACMECORP", false},  // 4 apart, 2 allowed
      {0, "", "ACME", "ACMECORP", true},
      // The line ends before the phrase's second word: only the first is compared.
      {100, "", "INVOICE DEPARTMENT", "please pay the invoice", true},
      {100, "", "INVOICE DEPARTMENT", "invoice, sales department", false},
      // A group phrase leads the keyword phrase.
      {100, "ACME", "INVOICE", "ACME+INVOICE", true},
      {100, "ACME", "INVOICE", "INVOICE ACME x", false},
      {0, "", "ANY", "", false},
  };
  for (const auto &c : cases) {
    const OcrWords lead = SplitOcrWords(c.lead, kMaxPhraseWords);
    const OcrWords phrase = SplitOcrWords(c.phrase, kMaxPhraseWords);
    const OcrWords line = SplitOcrWords(c.line, kMaxOcrLineWords);
    EXPECT_EQ(PhraseMatches(lead, phrase, line, c.ratio), c.matches) << c.phrase << " in " << c.line;
  }
  EXPECT_FALSE(PhraseMatches({}, {}, SplitOcrWords("A", 1), 0)) << "an empty phrase never matches";
}

TEST(OcrMatching, WordsAreSplitAtSeparatorRunsAndCut) {
  EXPECT_EQ(SplitOcrWords(" a,,b.;c:+d-e\tf g\n\rh", 15),
            (OcrWords{"a", "b", "c", "d", "e", "f", "g", "\rh"}))
      << "a carriage return is part of a word";
  const OcrWords cut = SplitOcrWords(std::string(60, 'x') + " y z", 2);
  EXPECT_EQ(cut, (OcrWords{std::string(kMaxOcrWordChars, 'x'), "y"}));
}

class OcrText : public testing::TempDirTest {};

TEST_F(OcrText, OnlyTheFirstLinesWithWordsAreRead) {
  std::string text = "\r\n \t \r\n---\r\n";  // no words: these take no place
  for (int i = 1; i <= 30; ++i)
    text += "line " + std::to_string(i) + "\r\n";
  WriteFile(PathOf("ocr.txt"), text);
  const auto lines = ReadOcrTextLines(PathOf("ocr.txt"));
  ASSERT_TRUE(lines);
  ASSERT_EQ(lines->size(), kMaxOcrLines);
  EXPECT_EQ(lines->front(), (OcrWords{"line", "1"}));
  EXPECT_EQ(lines->back(), (OcrWords{"line", "23"}));
  EXPECT_FALSE(ReadOcrTextLines(PathOf("missing.txt")));
}

// Long lines are read on in pieces that count as lines of their own; a NUL ends a piece's words;
// a CR LF torn apart by the read blocks is still one line end.
TEST_F(OcrText, LongLinesBinaryBytesAndBlockEdges) {
  std::string longLine;
  for (int i = 0; i < 1000; ++i)
    longLine += "word ";  // 5000 characters: pieces of 1022
  WriteFile(PathOf("long.txt"), longLine + "\nlast\n");
  const auto lines = ReadOcrTextLines(PathOf("long.txt"));
  ASSERT_TRUE(lines);
  ASSERT_EQ(lines->size(), 6u);
  EXPECT_EQ((*lines)[0].size(), kMaxOcrLineWords);
  EXPECT_EQ((*lines)[1][0], "rd") << "the second piece starts inside a word (1022 = 204 * 5 + 2)";
  EXPECT_EQ(lines->back(), OcrWords{"last"});

  WriteFile(PathOf("binary.txt"), std::string("AB\0CD\n\xff\x01\n", 9));
  EXPECT_EQ(*ReadOcrTextLines(PathOf("binary.txt")),
            (std::vector<OcrWords>{{"AB"}, {std::string("\xff\x01")}}));

  WriteFile(PathOf("edge.txt"), std::string(4095, '-') + "\r\nWORD\r\n");
  EXPECT_EQ(*ReadOcrTextLines(PathOf("edge.txt")), std::vector<OcrWords>{{"WORD"}});
}

}  // namespace
}  // namespace tqv
