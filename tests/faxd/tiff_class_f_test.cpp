// Fax TIFF files: what the writer puts in the tags a fax terminal checks, pages that come back
// bit for bit, and the files the reader must refuse.
#include "faxd/tiff_class_f.h"

#include <gtest/gtest.h>
#include <tiffio.h>

#include <cstring>

#include "scratch_dir.h"

namespace tqv::faxd {
namespace {

using testing::ScratchDirTest;

// A page with a diagonal and a block, so a row or bit order mistake shows.
PageImage Pattern(int height, Resolution resolution, int seed) {
  PageImage page(kFaxWidth, height, resolution);
  for (int y = 0; y < height; ++y)
    page.SetBlack((y * 7 + seed) % kFaxWidth, y, true);
  for (int y = 10; y < 30 && y < height; ++y)
    for (int x = 100 + seed; x < 300; ++x)
      page.SetBlack(x, y, true);
  return page;
}

void ExpectSamePixels(const PageImage &want, const PageImage &got) {
  ASSERT_EQ(want.Width(), got.Width());
  ASSERT_EQ(want.Height(), got.Height());
  for (int y = 0; y < want.Height(); ++y)
    ASSERT_EQ(0, std::memcmp(want.Row(y), got.Row(y), want.RowBytes())) << "row " << y;
}

class TiffClassF : public ScratchDirTest {};

TEST_F(TiffClassF, PagesComeBackBitForBitAtTheirResolution) {
  for (Resolution resolution : {Resolution::Normal, Resolution::Fine}) {
    const std::vector<PageImage> pages = {Pattern(A4Rows(resolution), resolution, 1),
                                          Pattern(A4Rows(resolution) / 2, resolution, 5)};
    std::string error;
    const std::string path = PathOf(resolution == Resolution::Fine ? "fine.tif" : "normal.tif");
    ASSERT_TRUE(WriteClassF(path, pages, error)) << error;
    std::vector<PageImage> read;
    ASSERT_TRUE(ReadFaxTiff(path, read, error)) << error;
    ASSERT_EQ(read.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
      EXPECT_EQ(read[i].GetResolution(), resolution);
      ExpectSamePixels(pages[i], read[i]);
    }
  }
}

TEST_F(TiffClassF, TagsAreThoseOfClassF) {
  const std::vector<PageImage> pages = {Pattern(200, Resolution::Fine, 0), Pattern(200, Resolution::Fine, 3)};
  std::string error;
  ASSERT_TRUE(WriteClassF(PathOf("f.tif"), pages, error)) << error;
  TIFF *tiff = TIFFOpen(PathOf("f.tif").c_str(), "r");
  ASSERT_NE(tiff, nullptr);
  for (std::uint16_t index = 0; index < 2; ++index) {
    std::uint32_t width = 0;
    std::uint16_t compression = 0, photometric = 0, fillOrder = 0, unit = 0, page = 0, count = 0;
    float x = 0, y = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_COMPRESSION, &compression);
    TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric);
    TIFFGetField(tiff, TIFFTAG_FILLORDER, &fillOrder);
    TIFFGetField(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
    TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &x);
    TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &y);
    TIFFGetField(tiff, TIFFTAG_PAGENUMBER, &page, &count);
    EXPECT_EQ(width, 1728u);
    EXPECT_EQ(compression, COMPRESSION_CCITTFAX3);
    EXPECT_EQ(photometric, PHOTOMETRIC_MINISWHITE);
    EXPECT_EQ(fillOrder, FILLORDER_LSB2MSB);
    EXPECT_EQ(unit, RESUNIT_INCH);
    EXPECT_FLOAT_EQ(x, 204);
    EXPECT_FLOAT_EQ(y, 196);
    EXPECT_EQ(page, index);
    EXPECT_EQ(count, 2);
    TIFFReadDirectory(tiff);
  }
  TIFFClose(tiff);
}

TEST_F(TiffClassF, MinIsBlackIsReadInvertedAndOddWidthsKeepTheirEdgeWhite) {
  // 10 pixels across, all zero bytes: black in a MinIsBlack file.
  TIFF *tiff = TIFFOpen(PathOf("b.tif").c_str(), "w");
  ASSERT_NE(tiff, nullptr);
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 10u);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 2u);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 1);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  std::uint8_t row[2] = {0, 0};
  TIFFWriteScanline(tiff, row, 0, 0);
  TIFFWriteScanline(tiff, row, 1, 0);
  TIFFClose(tiff);
  std::vector<PageImage> pages;
  std::string error;
  ASSERT_TRUE(ReadFaxTiff(PathOf("b.tif"), pages, error)) << error;
  ASSERT_EQ(pages.size(), 1u);
  EXPECT_EQ(pages[0].CountBlack(), 20u);
}

TEST_F(TiffClassF, WhatIsNoFaxImageIsRefusedWithAReason) {
  std::vector<PageImage> pages;
  std::string error;
  EXPECT_FALSE(ReadFaxTiff(Write("junk.tif", "II*\0 not really"), pages, error));
  EXPECT_NE(error.find("junk.tif"), std::string::npos);
  EXPECT_FALSE(ReadFaxTiff(PathOf("missing.tif"), pages, error));

  TIFF *tiff = TIFFOpen(PathOf("grey.tif").c_str(), "w");
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 4u);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1u);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  std::uint8_t row[4] = {};
  TIFFWriteScanline(tiff, row, 0, 0);
  TIFFClose(tiff);
  EXPECT_FALSE(ReadFaxTiff(PathOf("grey.tif"), pages, error));
  EXPECT_NE(error.find("not bilevel"), std::string::npos) << error;

  EXPECT_FALSE(WriteClassF(PathOf("none.tif"), {}, error));
  EXPECT_FALSE(WriteClassF(PathOf("no/such/dir.tif"), {Pattern(10, Resolution::Normal, 0)}, error));
}

}  // namespace
}  // namespace tqv::faxd
