// Styled text: the RTF subset's styles, the placeholders of cover pages and templates, the
// layout of styled paragraphs, and what the styles do to the drawn page.
#include <gtest/gtest.h>

#include "faxd/cover_page.h"
#include "faxd/rtf_subset.h"
#include "faxd/styled_page.h"
#include "scratch_dir.h"

namespace tqv::faxd {

// Paragraphs as text with their styles, so a failed comparison says what differs.
void PrintTo(const StyledParagraph &paragraph, std::ostream *out) {
  *out << (paragraph.newPage ? "[page]" : "") << "{";
  for (const StyledRun &run : paragraph.runs)
    *out << "\"" << run.text << "\"" << (run.style.bold ? "b" : "") << (run.style.italic ? "i" : "")
         << run.style.halfPoints << " ";
  *out << "}";
}

namespace {

constexpr TextStyle kPlain{};
constexpr TextStyle kBold{true, false, 24};

StyledParagraph Plain(std::string text, int halfPoints = 20) {
  return StyledParagraph{{{std::move(text), TextStyle{false, false, halfPoints}}}, false};
}

TEST(RtfStyles, RunsCarryTheirStyle) {
  struct Case {
    const char *rtf;
    std::vector<StyledParagraph> paragraphs;
  };
  const std::vector<Case> cases = {
      {R"({\rtf1 a{\b b}c})", {{{{"a", kPlain}, {"b", kBold}, {"c", kPlain}}, false}}},
      {R"({\rtf1 \b x\b0 y})", {{{{"x", kBold}, {"y", kPlain}}, false}}},
      {R"({\rtf1 \i\fs40 big\plain  small})",
       {{{{"big", TextStyle{false, true, 40}}, {" small", kPlain}}, false}}},
      {R"({\rtf1 {\b\i one }{\b\i two}})", {{{{"one two", TextStyle{true, true, 24}}}, false}}},
      {R"({\rtf1 \b1 on\b0 off})", {{{{"on", kBold}, {"off", kPlain}}, false}}},
      {R"({\rtf1 first\page second\par})", {{{{"first", kPlain}}, false}, {{{"second", kPlain}}, true}}},
      {R"({\rtf1 \fs0 zero})", {{{{"zero", kPlain}}, false}}},
  };
  for (const Case &c : cases)
    EXPECT_EQ(ParseRtf(c.rtf), c.paragraphs) << c.rtf;
}

TEST(CoverFields, PlaceholdersAreFilledOnce) {
  const CoverFields fields = {{"TO_NAME", "Sales <TO_NAME>"}, {"PAGES", "3"}, {"EMPTY", ""}};
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"To: <TO_NAME>", "To: Sales <TO_NAME>"}, {"<PAGES> pages<EMPTY>.", "3 pages."},
      {"<UNKNOWN> stays", "<UNKNOWN> stays"},   {"a <<PAGES>> b", "a <3> b"},
      {"unclosed <PAGES", "unclosed <PAGES"},
  };
  for (const auto &[text, filled] : cases)
    EXPECT_EQ(FillPlaceholders(text, fields), filled) << text;

  std::vector<StyledParagraph> paragraphs = ParseRtf(R"({\rtf1 {\b <PAGES>} of <PAGES>})");
  FillPlaceholders(paragraphs, fields);
  EXPECT_EQ(paragraphs[0].runs, (std::vector<StyledRun>{{"3", kBold}, {" of 3", kPlain}}));
}

TEST(CoverFields, PlainTextParagraphs) {
  const std::vector<std::pair<std::string, std::vector<StyledParagraph>>> cases = {
      {"a\r\nb\rc\n", {Plain("a"), Plain("b"), Plain("c")}},
      {"a\n\nb", {Plain("a"), {}, Plain("b")}},
      {"a\fb", {Plain("a"), {{{"b", TextStyle{false, false, 20}}}, true}}},
      {"a\f", {Plain("a")}},
      {"a\n\n\n", {Plain("a")}},
  };
  for (const auto &[text, paragraphs] : cases)
    EXPECT_EQ(ParagraphsOf(text), paragraphs) << text;
}

TEST(CoverFields, MessageOnTheTemplate) {
  const std::vector<StyledParagraph> letterhead =
      ParseRtf(R"({\rtf1 {\b ACME}\par Dear <MESSAGE> regards\par Bye})");
  const std::vector<StyledParagraph> placed = OnTemplate(letterhead, "one\ntwo");
  ASSERT_EQ(placed.size(), 6u);
  EXPECT_EQ(placed[0].runs, (std::vector<StyledRun>{{"ACME", kBold}}));
  EXPECT_EQ(placed[1].Text(), "Dear ");
  EXPECT_EQ(placed[2], Plain("one"));
  EXPECT_EQ(placed[3], Plain("two"));
  EXPECT_EQ(placed[4].Text(), " regards");
  EXPECT_EQ(placed[5].Text(), "Bye");

  // Without a placeholder the message follows the template after a blank line.
  const std::vector<StyledParagraph> after = OnTemplate(ParseRtf(R"({\rtf1 ACME})"), "text");
  ASSERT_EQ(after.size(), 3u);
  EXPECT_EQ(after[0].Text(), "ACME");
  EXPECT_TRUE(after[1].runs.empty());
  EXPECT_EQ(after[2], Plain("text"));
}

TEST(StyledLayout, WordsWrapAtTheMarginAndPagesFill) {
  // 80 characters of 10 points fill the line exactly; one more character goes to the next line.
  const std::vector<StyledPage> exact =
      LayOutStyled({Plain(std::string(39, 'a') + " " + std::string(40, 'b'))});
  ASSERT_EQ(exact.size(), 1u);
  ASSERT_EQ(exact[0].size(), 2u);
  EXPECT_EQ(exact[0][0].baseline, exact[0][1].baseline);
  const std::vector<StyledPage> wrapped =
      LayOutStyled({Plain(std::string(40, 'a') + " " + std::string(40, 'b'))});
  ASSERT_EQ(wrapped[0].size(), 2u);
  EXPECT_GT(wrapped[0][0].baseline, wrapped[0][1].baseline);
  EXPECT_EQ(wrapped[0][1].x, wrapped[0][0].x);

  // A word wider than the line is broken; nothing is set beyond the margin.
  const std::vector<StyledPage> broken = LayOutStyled({Plain(std::string(200, 'w'))});
  ASSERT_EQ(broken[0].size(), 3u);
  for (const PlacedText &text : broken[0])
    EXPECT_LE(text.x + 6.0 * text.text.size(), 64.94 + 480 + 1e-6);

  // Larger type takes more room: fewer lines of 24 points than of 10 fit on a page.
  const auto pagesOf = [](int lines, int halfPoints) {
    std::vector<StyledParagraph> paragraphs(static_cast<std::size_t>(lines), Plain("line", halfPoints));
    return LayOutStyled(paragraphs).size();
  };
  EXPECT_EQ(pagesOf(50, 20), 1u);
  EXPECT_EQ(pagesOf(51, 48), 3u);

  StyledParagraph second = Plain("second");
  second.newPage = true;
  EXPECT_EQ(LayOutStyled({Plain("first"), second}).size(), 2u);
  // A page break first, or nothing at all, still makes exactly one page.
  EXPECT_EQ(LayOutStyled({second}).size(), 1u);
  EXPECT_EQ(LayOutStyled({}).size(), 1u);
}

TEST(StyledLayout, PostScriptSelectsFaceAndSize) {
  const std::string program = StyledPostScript(LayOutStyled(ParseRtf(R"({\rtf1 {\b\i\fs36 Big} (x)})")));
  EXPECT_NE(program.find("/CBI 18.000000 selectfont"), std::string::npos) << program;
  EXPECT_NE(program.find("/CR 12.000000 selectfont"), std::string::npos) << program;
  EXPECT_NE(program.find("(\\(x\\)) show"), std::string::npos) << program;
}

class StyledRendering : public testing::ScratchDirTest {};

TEST_F(StyledRendering, BoldDrawsHeavierAndLargerDrawsTaller) {
  const auto ink = [&](const char *rtf, int &top, int &bottom) {
    std::vector<PageImage> pages;
    std::string error;
    EXPECT_TRUE(RenderStyled(ParseRtf(rtf), Context(Resolution::Fine), pages, error)) << error;
    if (pages.empty()) return std::size_t{0};
    top = pages[0].Height();
    bottom = 0;
    for (int y = 0; y < pages[0].Height(); ++y)
      if (pages[0].CountBlack(y, y + 1) > 0) top = std::min(top, y), bottom = std::max(bottom, y);
    return pages[0].CountBlack();
  };
  int top = 0, bottom = 0;
  const std::size_t plain = ink(R"({\rtf1 HEAVY})", top, bottom);
  const int plainHeight = bottom - top;
  const std::size_t bold = ink(R"({\rtf1 \b HEAVY})", top, bottom);
  EXPECT_GT(bold, plain * 5 / 4);
  ink(R"({\rtf1 \fs72 HEAVY})", top, bottom);
  EXPECT_GT(bottom - top, plainHeight * 2);
}

}  // namespace
}  // namespace tqv::faxd
