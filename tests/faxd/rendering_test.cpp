// Documents into fax pages through the real helpers: Ghostscript for PDF, PostScript and text,
// libtiff for TIFF documents, and the header line on every page.
#include <gtest/gtest.h>
#include <tiffio.h>

#include <cstring>
#include <ctime>
#include <functional>

#include "faxd/document_renderer.h"
#include "faxd/ghostscript_renderer.h"
#include "faxd/header_line.h"
#include "faxd/text_page.h"
#include "faxd/tiff_document.h"
#include "scratch_dir.h"

namespace tqv::faxd {
namespace {

class Rendering : public testing::ScratchDirTest {
 protected:
  std::vector<PageImage> Render(const std::string &path, Resolution resolution) {
    std::vector<PageImage> pages;
    std::string error;
    EXPECT_TRUE(RenderDocument(path, Context(resolution), pages, error)) << error;
    return pages;
  }

  // An 8-bit grey TIFF of one page, LZW-compressed, its pixels from `pixel`.
  std::string GreyTiff(const std::string &name, std::uint32_t width, std::uint32_t height, float xDpi,
                       float yDpi,
                       const std::function<std::uint8_t(std::uint32_t x, std::uint32_t y)> &pixel) {
    TIFF *tiff = TIFFOpen(PathOf(name).c_str(), "w");
    EXPECT_NE(tiff, nullptr);
    if (tiff == nullptr) return PathOf(name);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, xDpi);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, yDpi);
    std::vector<std::uint8_t> row(width);
    for (std::uint32_t y = 0; y < height; ++y) {
      for (std::uint32_t x = 0; x < width; ++x)
        row[x] = pixel(x, y);
      TIFFWriteScanline(tiff, row.data(), y, 0);
    }
    TIFFClose(tiff);
    return PathOf(name);
  }
};

void ExpectFaxPages(const std::vector<PageImage> &pages, std::size_t count, Resolution resolution) {
  ASSERT_EQ(pages.size(), count);
  for (const PageImage &page : pages) {
    EXPECT_EQ(page.Width(), kFaxWidth);
    EXPECT_EQ(page.GetResolution(), resolution);
    EXPECT_LE(page.Height(), A4Rows(resolution));
    EXPECT_GT(page.CountBlack(), 0u) << "a blank page";
  }
}

TEST_F(Rendering, PdfAndPostScriptPagesAtEitherResolution) {
  const std::string program = testing::WordPagesPostScript({"FIRST", "SECOND", "THIRD"});
  const std::string pdf = MakePdf("letter.pdf", program);
  const std::string ps = Write("letter.ps", program);
  for (Resolution resolution : {Resolution::Normal, Resolution::Fine}) {
    for (const std::string &path : {pdf, ps}) {
      const std::vector<PageImage> pages = Render(path, resolution);
      ExpectFaxPages(pages, 3, resolution);
      if (!pages.empty()) {
        EXPECT_EQ(pages[0].Height(), A4Rows(resolution)) << path;
      }
    }
  }
}

TEST_F(Rendering, TextPagesFollowTheLayout) {
  std::string text;
  for (int line = 1; line <= 61; ++line)
    text += "Line " + std::to_string(line) + "\r\n";
  ExpectFaxPages(Render(Write("long.txt", text), Resolution::Fine), 2, Resolution::Fine);
  // Text sits inside the page: the margins, left and right, stay white.
  const std::vector<PageImage> pages = Render(Write("wide.txt", std::string(80, 'W')), Resolution::Normal);
  ASSERT_EQ(pages.size(), 1u);
  std::size_t marginInk = 0;
  for (int y = 0; y < pages[0].Height(); ++y)
    for (int x : {0, 50, kFaxWidth - 50, kFaxWidth - 1})
      marginInk += pages[0].Black(x, y);
  EXPECT_EQ(marginInk, 0u);
}

// Text set from the glyph cache lands where Ghostscript would draw the same layout.
TEST_F(Rendering, TextSetFromGlyphsMatchesGhostscriptsDrawing) {
  const std::string text =
      "Price list\r\n\r\n6204 ball bearing\t4.10\r\n" + std::string(80, 'x') + "\fcaf\xE9";
  for (Resolution resolution : {Resolution::Normal, Resolution::Fine}) {
    std::vector<PageImage> set, drawn;
    std::string error;
    ASSERT_TRUE(RenderText(text, Context(resolution), set, error)) << error;
    const std::string program = Write("text.ps", TextPostScript(LayOutText(text)));
    ASSERT_TRUE(RenderWithGhostscript(program, Context(resolution), drawn, error, {kFaxWidth, 0, false}))
        << error;
    ASSERT_EQ(set.size(), 2u);
    ASSERT_EQ(drawn.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
      ASSERT_EQ(set[i].Height(), drawn[i].Height());
      // The same ink, give or take a pixel of rounding in each glyph's place: every black pixel of
      // one has a black pixel of the other at most one pixel away.
      for (const auto &[one, other] : {std::pair(&set[i], &drawn[i]), std::pair(&drawn[i], &set[i])}) {
        std::size_t stray = 0;
        for (int y = 0; y < one->Height(); ++y)
          for (int x = 0; x < kFaxWidth; ++x) {
            if (!one->Black(x, y)) continue;
            bool near = false;
            for (int dy = -1; dy <= 1 && !near; ++dy)
              for (int dx = -1; dx <= 1 && !near; ++dx) {
                const int nx = x + dx, ny = y + dy;
                near = nx >= 0 && ny >= 0 && nx < kFaxWidth && ny < other->Height() && other->Black(nx, ny);
              }
            stray += !near;
          }
        EXPECT_LT(stray, one->CountBlack() / 20) << "page " << i + 1;
      }
      EXPECT_GT(set[i].CountBlack(), 0u);
    }
  }
}

TEST_F(Rendering, TiffDocumentsAreScaledToTheFaxWidth) {
  // 850 x 1650 grey pixels at 100 dpi: a letter page and a half, so two fax pages. A dark left half
  // of the first row only, and a grey (light) band that must stay white.
  GreyTiff("scan.tif", 850, 1650, 100, 100, [](std::uint32_t x, std::uint32_t y) -> std::uint8_t {
    return x >= 425 ? 255 : y == 0 ? 0 : y < 20 ? 200 : 255;
  });
  const std::vector<PageImage> pages = Render(PathOf("scan.tif"), Resolution::Fine);
  ASSERT_EQ(pages.size(), 2u);
  // 16.5 inches of rows at 196 dpi, cut after one A4 length.
  EXPECT_EQ(pages[0].Height(), kA4RowsFine);
  EXPECT_NEAR(pages[0].Height() + pages[1].Height(), 1650 * 1728.0 / 850 * 196 / 204, 2);
  EXPECT_TRUE(pages[0].Black(0, 0));
  EXPECT_TRUE(pages[0].Black(860, 0));
  EXPECT_FALSE(pages[0].Black(870, 0));
  EXPECT_EQ(pages[0].CountBlack(3, pages[0].Height()), 0u);
}

// A mailed TIFF whose resolution tags stretch two rows into a billion fax rows must fail the job,
// not take the service's memory.
TEST_F(Rendering, TiffStretchedPastAnyDocumentLengthIsRefused) {
  GreyTiff("sliver.tif", 8, 2, 1.0e6f, 1.0f, [](std::uint32_t, std::uint32_t) -> std::uint8_t { return 0; });
  std::vector<PageImage> pages;
  std::string error;
  EXPECT_FALSE(RenderDocument(PathOf("sliver.tif"), Context(Resolution::Normal), pages, error));
  EXPECT_NE(error.find("more than 500 fax pages"), std::string::npos) << error;
}

TEST_F(Rendering, WhatCannotBeRenderedFailsWithTheKindNamed) {
  struct Case {
    const char *file;
    std::string bytes;
    const char *reason;
  };
  const std::vector<Case> cases = {
      {"report.docx", std::string("PK\x03\x04\x14\0\x06\0 word/document.xml", 26), "cannot be faxed"},
      {"broken.pdf", "%PDF-1.4\nthis is no PDF at all\n%%EOF\n", "PDF document that cannot be rendered"},
      {"broken.tif", std::string("II*\0\x08\0\0\0garbage", 16), "TIFF document that cannot be rendered"},
      {"error.ps", "%!PS\nundefinedoperator\n", "PostScript document that cannot be rendered: Ghostscript"},
      {"long.ps", "%!PS\n1 1 600 { pop showpage } for\n", "more than 500 pages"},
  };
  for (const Case &c : cases) {
    std::vector<PageImage> pages;
    std::string error;
    EXPECT_FALSE(RenderDocument(Write(c.file, c.bytes), Context(Resolution::Normal), pages, error)) << c.file;
    EXPECT_NE(error.find(c.reason), std::string::npos) << c.file << ": " << error;
  }
  std::vector<PageImage> pages;
  std::string error;
  EXPECT_FALSE(RenderDocument(PathOf("missing.pdf"), Context(Resolution::Normal), pages, error));
  EXPECT_NE(error.find("cannot be read"), std::string::npos) << error;
}

TEST_F(Rendering, HeaderLineOnEveryPageAndOnlyAtTheTop) {
  for (Resolution resolution : {Resolution::Normal, Resolution::Fine}) {
    std::vector<PageImage> pages(3, PageImage(kFaxWidth, A4Rows(resolution), resolution));
    // Ink under the strip is covered; ink below it stays.
    pages[1].SetBlack(5, 2, true);
    pages[1].SetBlack(5, A4Rows(resolution) - 1, true);
    std::string error;
    ASSERT_TRUE(
        StampHeaderLines(pages, "ACME SALES +1 555 0100", std::time(nullptr), Context(resolution), error))
        << error;
    const int strip = HeaderRows(resolution);
    for (const PageImage &page : pages)
      EXPECT_GT(page.CountBlack(0, strip), 200u);
    EXPECT_EQ(pages[0].CountBlack(strip, pages[0].Height()), 0u);
    EXPECT_FALSE(pages[1].Black(5, 2));
    EXPECT_TRUE(pages[1].Black(5, A4Rows(resolution) - 1));
    // "Page 1/3" and "Page 3/3" differ in one digit, so their strips do too.
    EXPECT_NE(0,
              std::memcmp(pages[0].Row(strip / 2), pages[2].Row(strip / 2), pages[0].RowBytes()) |
                  std::memcmp(pages[0].Row(strip / 3), pages[2].Row(strip / 3), pages[0].RowBytes()) |
                  std::memcmp(pages[0].Row(strip * 2 / 3), pages[2].Row(strip * 2 / 3), pages[0].RowBytes()));
  }
}

TEST(HeaderLine, TextHoldsTimeHeaderAndPage) {
  std::tm when{};
  when.tm_year = 2026 - 1900;
  when.tm_mon = 10;
  when.tm_mday = 24;
  when.tm_hour = 13;
  when.tm_min = 5;
  when.tm_isdst = -1;
  const std::time_t at = std::mktime(&when);
  EXPECT_EQ(HeaderLineText("ACME", at, 2, 3), "2026-11-24 13:05  ACME  Page 2/3");
  EXPECT_EQ(HeaderLineText("", at, 1, 1), "2026-11-24 13:05  Page 1/1");
  // The header field holds at most 46 characters; a longer text is cut, never spread over the page.
  EXPECT_EQ(HeaderLineText(std::string(60, 'H'), at, 1, 1),
            "2026-11-24 13:05  " + std::string(46, 'H') + "  Page 1/1");
}

}  // namespace
}  // namespace tqv::faxd
