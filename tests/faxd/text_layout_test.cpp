// The fixed-width text layout, the RTF subset's text and the document kinds: pure functions, so
// table-driven.
#include <gtest/gtest.h>

#include "faxd/document_kind.h"
#include "faxd/rtf_subset.h"
#include "faxd/text_page.h"

namespace tqv::faxd {
namespace {

struct LayoutCase {
  const char *name;
  std::string text;
  std::vector<TextPage> pages;
};

TEST(TextLayout, LinesAndPages) {
  const TextLayout narrow{10, 3};
  const std::vector<LayoutCase> cases = {
      {"every line end", "a\r\nb\rc\nd", {{"a", "b", "c"}, {"d"}}},
      {"empty text is one empty page", "", {{}}},
      {"tab to the next multiple of 8", "ab\tc", {{"ab      c"}}},
      {"wrap at the last space", "one two three", {{"one two", "three"}}},
      {"wrap at the edge without a space", "abcdefghijklm", {{"abcdefghij", "klm"}}},
      {"form feed starts a page", "a\fb", {{"a"}, {"b"}}},
      {"form feed at the end adds no page", "a\f", {{"a"}}},
      {"trailing blank lines add no page", "a\nb\nc\n\n\n\n", {{"a", "b", "c"}}},
      {"control characters become spaces",
       std::string("a\x01"
                   "b\x7F"
                   "c"),
       {{"a b c"}}},
      {"blank lines inside are kept", "a\n\nb", {{"a", "", "b"}}},
  };
  for (const LayoutCase &c : cases)
    EXPECT_EQ(LayOutText(c.text, narrow), c.pages) << c.name;
}

TEST(TextLayout, PostScriptEscapesWhatWouldBreakAString) {
  const std::string program = TextPostScript({{"(a) \\ b", "caf\xE9"}});
  EXPECT_NE(program.find("(\\(a\\) \\\\ b) show"), std::string::npos) << program;
  EXPECT_NE(program.find("(caf\\351) show"), std::string::npos) << program;
  EXPECT_NE(program.find("ISOLatin1Encoding"), std::string::npos);
  // One showpage per page, nothing drawn for an empty line.
  const std::string two = TextPostScript({{"x", ""}, {}});
  std::size_t count = 0;
  for (std::size_t at = two.find("showpage"); at != std::string::npos; at = two.find("showpage", at + 1))
    ++count;
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(two.find("() show"), std::string::npos);
}

TEST(RtfSubset, TextOfTheSubset) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {R"({\rtf1\ansi{\fonttbl{\f0 Arial;}}{\colortbl;\red0;}\f0 Hello\par World})", "Hello\nWorld"},
      {R"({\rtf1 \b Bold\b0  and \i italic\i0  at \fs40 size\fs24 .})", "Bold and italic at size."},
      {R"({\rtf1 a\tab b\line c})", "a\tb\nc"},
      {R"({\rtf1 \{braces\} and \\backslash})", "{braces} and \\backslash"},
      {R"({\rtf1 caf\'e9 \u233?t\u8364?})", "caf\xE9 \xE9t?"},
      {R"({\rtf1 {\*\generator Writer;}{\info{\title T}}Text})", "Text"},
      {R"({\rtf1 \trowd\cellx100\cellx200 Name\cell Fax\cell\row One\cell 555\cell\row})",
       "Name | Fax\nOne | 555"},
      {R"({\rtf1 One\page Two})", "One\fTwo"},
      {R"({\rtf1 unclosed {group)", "unclosed group"},
      {"{\\rtf1 source\r\nline ends}", "sourceline ends"},
  };
  for (const auto &[rtf, text] : cases)
    EXPECT_EQ(RtfToText(rtf), text) << rtf;
}

TEST(DocumentKinds, BySignatureAndContent) {
  const std::vector<std::pair<std::string, DocumentKind>> cases = {
      {std::string("II*\0rest", 8), DocumentKind::Tiff},
      {std::string("MM\0*rest", 8), DocumentKind::Tiff},
      {"%PDF-1.7\n", DocumentKind::Pdf},
      {"\xEF\xBB\xBF%PDF-1.4", DocumentKind::Pdf},
      {"%!PS-Adobe-3.0\n", DocumentKind::PostScript},
      {"{\\rtf1\\ansi x}", DocumentKind::Rtf},
      {"Dear Sir,\r\n\tthe price list.\f", DocumentKind::Text},
      {"caf\xE9 na\xEFve", DocumentKind::Text},
      {std::string("PK\x03\x04\x14\0\x06\0", 8), DocumentKind::Other},
      {"\x01\x02\x03\x04\x05 mostly control", DocumentKind::Other},
  };
  for (const auto &[head, kind] : cases)
    EXPECT_EQ(KindOfBytes(head), kind) << head;
}

}  // namespace
}  // namespace tqv::faxd
