// Recognition of received pages: a word that went out in a PDF is read back from the page that
// came in over the loopback line; without Tesseract there is simply no text. PNG pictures of the
// pages keep their proportions.
#include "faxd/ocr.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>

#include "faxd/document_renderer.h"
#include "faxd/loopback_line.h"
#include "faxd/png_pages.h"
#include "faxd/tiff_class_f.h"
#include "scratch_dir.h"

namespace tqv::faxd {
namespace {

class Recognition : public testing::ScratchDirTest {};

std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
  return text;
}

TEST_F(Recognition, AWordSentInAPdfIsReadFromTheReceivedPage) {
  if (!ProgramAvailable("tesseract")) GTEST_SKIP() << "tesseract is not installed";
  const std::string pdf = MakePdf("order.pdf", testing::WordPagesPostScript({"PINEAPPLE", "INVOICE"}));
  for (Resolution resolution : {Resolution::Normal, Resolution::Fine}) {
    std::vector<PageImage> pages;
    std::string error;
    ASSERT_TRUE(RenderDocument(pdf, Context(resolution), pages, error)) << error;
    ASSERT_TRUE(WriteClassF(PathOf("send.tif"), pages, error)) << error;
    LoopbackOptions options;
    options.receiveDir = Dir();
    const CallResult call = LoopbackLine(options).Call({"1", PathOf("send.tif"), "TEST"});
    ASSERT_FALSE(call.receivedTiff.empty()) << call.sender.completionText;
    std::vector<PageImage> received;
    ASSERT_TRUE(ReadFaxTiff(call.receivedTiff, received, error)) << error;

    const OcrResult ocr = RecognisePages(received, Dir());
    ASSERT_TRUE(ocr.recognised) << ocr.error;
    const std::string text = Upper(ocr.text);
    const std::size_t first = text.find("PINEAPPLE"), pageBreak = text.find('\f'),
                      second = text.find("INVOICE");
    EXPECT_NE(first, std::string::npos) << ocr.text;
    EXPECT_NE(second, std::string::npos) << ocr.text;
    // Each word on its own page, in order.
    EXPECT_LT(first, pageBreak);
    EXPECT_LT(pageBreak, second);
  }
}

TEST_F(Recognition, WithoutTesseractThereIsNoTextAndNoFailure) {
  const OcrResult ocr = RecognisePages({PageImage(kFaxWidth, 10, Resolution::Fine)}, Dir(),
                                       {"tqvfaxd-no-such-program", "eng", 10});
  EXPECT_FALSE(ocr.available);
  EXPECT_FALSE(ocr.recognised);
  EXPECT_TRUE(ocr.text.empty());
  EXPECT_TRUE(ocr.error.empty());
}

TEST_F(Recognition, PngPagesHaveSquarePixels) {
  PageImage normal(kFaxWidth, 100, Resolution::Normal), fine(kFaxWidth, 100, Resolution::Fine);
  normal.SetBlack(0, 0, true);
  std::string error;
  ASSERT_TRUE(WriteClassF(PathOf("fax.tif"), {normal, fine}, error)) << error;
  std::vector<std::string> written;
  ASSERT_TRUE(WritePngPages(PathOf("fax.tif"), PathOf("fax"), written, error)) << error;
  ASSERT_EQ(written, (std::vector<std::string>{PathOf("fax-1.png"), PathOf("fax-2.png")}));
  // IHDR: width and height as big-endian numbers at bytes 16 and 20.
  const auto size = [](const std::string &png) {
    const auto number = [&](std::size_t at) {
      return (static_cast<unsigned char>(png[at]) << 24) | (static_cast<unsigned char>(png[at + 1]) << 16) |
             (static_cast<unsigned char>(png[at + 2]) << 8) | static_cast<unsigned char>(png[at + 3]);
    };
    return std::pair<int, int>(number(16), number(20));
  };
  const std::string first = Read(written[0]), second = Read(written[1]);
  ASSERT_EQ(first.substr(1, 3), "PNG");
  EXPECT_EQ(size(first), std::make_pair(kFaxWidth, 200));
  EXPECT_EQ(size(second), std::make_pair(kFaxWidth, 100));
  EXPECT_FALSE(WritePngPages(PathOf("missing.tif"), PathOf("x"), written, error));
}

}  // namespace
}  // namespace tqv::faxd
