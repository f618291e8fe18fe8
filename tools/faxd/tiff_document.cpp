// TIFF documents through libtiff's RGBA reader, which decodes every photometric and compression it
// knows; a page it cannot decode fails the whole document rather than leaving a page out.
#include "faxd/tiff_document.h"

#include "faxd/tiff_class_f.h"

#include <tiffio.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace tqv::faxd {

namespace {

struct TiffCloser {
  void operator()(TIFF *tiff) const { TIFFClose(tiff); }
};

// Pages larger than this are no document anyone faxes; refusing them bounds the memory.
constexpr std::uint64_t kMaxPixels = 200ull * 1000 * 1000;
// A sliver of a picture or a hostile resolution tag can stretch one page into millions of fax pages
// (or past what an int counts): the length is checked before a row is drawn.

// The image's height in fax rows: its height in inches at the job's row density, the width fitted
// to the fax width. Infinite or NaN for a hostile resolution; the caller bounds it.
double FaxRowsOf(int width, int height, float xDpi, float yDpi, Resolution resolution) {
  const double scale = static_cast<double>(kFaxWidth) / width;
  return height * scale * (static_cast<double>(xDpi) / yDpi) * RowsPerInch(resolution) / kFaxXResolution;
}

float DotsPerInch(TIFF *tiff, ttag_t tag, std::uint16_t unit) {
  float value = 0;
  if (!TIFFGetField(tiff, tag, &value) || !(value > 0)) return 0;
  return unit == RESUNIT_CENTIMETER ? value * 2.54f : value;
}

}  // namespace

std::vector<PageImage> FaxPagesOf(const std::vector<std::uint8_t> &image, int width, int height, float xDpi,
                                  float yDpi, Resolution resolution) {
  const double scale = static_cast<double>(kFaxWidth) / width;
  const double rowsPerSourceRow = FaxRowsOf(width, height, xDpi, yDpi, resolution) / height;
  const int totalRows = std::max(1, static_cast<int>(std::lround(height * rowsPerSourceRow)));
  const int pageRows = A4Rows(resolution);
  std::vector<PageImage> pages;
  for (int first = 0; first < totalRows; first += pageRows) {
    const int rows = std::min(pageRows, totalRows - first);
    PageImage page(kFaxWidth, rows, resolution);
    for (int y = 0; y < rows; ++y) {
      const int sourceY = std::min(height - 1, static_cast<int>((first + y) / rowsPerSourceRow));
      const std::uint8_t *source = image.data() + static_cast<std::size_t>(sourceY) * width;
      for (int x = 0; x < kFaxWidth; ++x)
        if (source[std::min(width - 1, static_cast<int>(x / scale))] < 128) page.SetBlack(x, y, true);
    }
    pages.push_back(std::move(page));
  }
  return pages;
}

bool RenderTiffDocument(const std::string &path, const RenderContext &context, std::vector<PageImage> &pages,
                        std::string &error) {
  SilenceLibtiff();
  std::unique_ptr<TIFF, TiffCloser> tiff(TIFFOpen(path.c_str(), "r"));
  if (!tiff) {
    error = "it is no TIFF file libtiff can read";
    return false;
  }
  TIFF *t = tiff.get();
  pages.clear();
  int index = 0;
  do {
    ++index;
    std::uint32_t width = 0, height = 0;
    TIFFGetField(t, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(t, TIFFTAG_IMAGELENGTH, &height);
    if (width == 0 || height == 0 || static_cast<std::uint64_t>(width) * height > kMaxPixels) {
      error = "page " + std::to_string(index) + " has no usable size";
      return false;
    }
    std::uint16_t unit = RESUNIT_INCH;
    TIFFGetFieldDefaulted(t, TIFFTAG_RESOLUTIONUNIT, &unit);
    float xDpi = DotsPerInch(t, TIFFTAG_XRESOLUTION, unit), yDpi = DotsPerInch(t, TIFFTAG_YRESOLUTION, unit);
    // Without a resolution the pixels are taken as square.
    if (xDpi <= 0 || yDpi <= 0) xDpi = yDpi = 1;
    const double rows =
        FaxRowsOf(static_cast<int>(width), static_cast<int>(height), xDpi, yDpi, context.resolution);
    const double pagesLeft = kMaxDocumentPages - static_cast<double>(pages.size());
    if (!(rows <= pagesLeft * A4Rows(context.resolution))) {
      error = "it would make more than " + std::to_string(kMaxDocumentPages) + " fax pages";
      return false;
    }
    std::vector<std::uint32_t> rgba(static_cast<std::size_t>(width) * height);
    if (!TIFFReadRGBAImageOriented(t, width, height, rgba.data(), ORIENTATION_TOPLEFT, 0)) {
      error = "page " + std::to_string(index) + " cannot be decoded";
      return false;
    }
    std::vector<std::uint8_t> grey(rgba.size());
    for (std::size_t i = 0; i < rgba.size(); ++i) {
      const std::uint32_t pixel = rgba[i];
      // Transparent counts as white paper.
      grey[i] = TIFFGetA(pixel) < 128
                    ? 255
                    : static_cast<std::uint8_t>(
                          (TIFFGetR(pixel) * 299 + TIFFGetG(pixel) * 587 + TIFFGetB(pixel) * 114) / 1000);
    }
    for (PageImage &page :
         FaxPagesOf(grey, static_cast<int>(width), static_cast<int>(height), xDpi, yDpi, context.resolution))
      pages.push_back(std::move(page));
  } while (TIFFReadDirectory(t));
  return true;
}

}  // namespace tqv::faxd
