// TIFF Class F through libtiff. libtiff's own warnings and errors are silenced: each failure is
// reported once, as the reason of the call that met it.
#include "faxd/tiff_class_f.h"

#include <tiffio.h>

#include <cstring>
#include <memory>
#include <mutex>

namespace tqv::faxd {

namespace {

struct TiffCloser {
  void operator()(TIFF *tiff) const { TIFFClose(tiff); }
};
using TiffFile = std::unique_ptr<TIFF, TiffCloser>;

TiffFile OpenQuietly(const std::string &path, const char *mode) {
  SilenceLibtiff();
  return TiffFile(TIFFOpen(path.c_str(), mode));
}

// Rows per inch of a page's Y resolution, whatever its unit.
float RowsPerInchOf(TIFF *tiff) {
  float yResolution = 0;
  std::uint16_t unit = RESUNIT_INCH;
  if (!TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &yResolution)) return 0;
  TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
  return unit == RESUNIT_CENTIMETER ? yResolution * 2.54f : yResolution;
}

}  // namespace

void SilenceLibtiff() {
  // Once: spandsp reads TIFF files on the line's thread while pages are written on this one.
  static std::once_flag once;
  std::call_once(once, [] {
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
  });
}

bool WriteClassF(const std::string &path, const std::vector<PageImage> &pages, std::string &error) {
  if (pages.empty()) {
    error = "no page to write to " + path;
    return false;
  }
  TiffFile tiff = OpenQuietly(path, "w");
  if (!tiff) {
    error = "cannot create " + path;
    return false;
  }
  const auto count = static_cast<std::uint16_t>(pages.size());
  for (std::size_t index = 0; index < pages.size(); ++index) {
    const PageImage &page = pages[index];
    TIFF *t = tiff.get();
    TIFFSetField(t, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
    TIFFSetField(t, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(page.Width()));
    TIFFSetField(t, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(page.Height()));
    TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 1);
    TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(t, TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX3);
    TIFFSetField(t, TIFFTAG_GROUP3OPTIONS, GROUP3OPT_FILLBITS);
    TIFFSetField(t, TIFFTAG_FILLORDER, FILLORDER_LSB2MSB);
    TIFFSetField(t, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    TIFFSetField(t, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(t, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(t, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(t, TIFFTAG_XRESOLUTION, static_cast<float>(kFaxXResolution));
    TIFFSetField(t, TIFFTAG_YRESOLUTION, static_cast<float>(RowsPerInch(page.GetResolution())));
    TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(page.Height()));
    TIFFSetField(t, TIFFTAG_PAGENUMBER, static_cast<std::uint16_t>(index), count);
    TIFFSetField(t, TIFFTAG_SOFTWARE, "tqvfaxd");
    std::vector<std::uint8_t> row(page.RowBytes());
    for (int y = 0; y < page.Height(); ++y) {
      std::memcpy(row.data(), page.Row(y), row.size());
      if (TIFFWriteScanline(t, row.data(), static_cast<std::uint32_t>(y), 0) < 0) {
        error = "cannot write page " + std::to_string(index + 1) + " to " + path;
        return false;
      }
    }
    if (!TIFFWriteDirectory(t)) {
      error = "cannot write page " + std::to_string(index + 1) + " to " + path;
      return false;
    }
  }
  return true;
}

bool ReadFaxTiff(const std::string &path, std::vector<PageImage> &pages, std::string &error) {
  TiffFile tiff = OpenQuietly(path, "r");
  if (!tiff) {
    error = path + " is no TIFF file that can be read";
    return false;
  }
  TIFF *t = tiff.get();
  pages.clear();
  do {
    const std::string which = "page " + std::to_string(pages.size() + 1) + " of " + path;
    std::uint32_t width = 0, height = 0;
    std::uint16_t bits = 1, samples = 1, photometric = PHOTOMETRIC_MINISWHITE;
    TIFFGetField(t, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(t, TIFFTAG_IMAGELENGTH, &height);
    TIFFGetFieldDefaulted(t, TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetFieldDefaulted(t, TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetField(t, TIFFTAG_PHOTOMETRIC, &photometric);
    if (bits != 1 || samples != 1) {
      error = which + " is not bilevel";
      return false;
    }
    // A page of a million rows is no fax; refusing it keeps a hostile file from taking the memory.
    if (width == 0 || height == 0 || width > 10000 || height > 100000) {
      error = which + " has no usable size";
      return false;
    }
    const Resolution resolution = RowsPerInchOf(t) >= 150 ? Resolution::Fine : Resolution::Normal;
    PageImage page(static_cast<int>(width), static_cast<int>(height), resolution);
    const bool invert = photometric == PHOTOMETRIC_MINISBLACK;
    std::vector<std::uint8_t> row(static_cast<std::size_t>(TIFFScanlineSize(t)));
    if (row.size() < page.RowBytes()) {
      error = which + " has no usable size";
      return false;
    }
    for (std::uint32_t y = 0; y < height; ++y) {
      if (TIFFReadScanline(t, row.data(), y, 0) < 0) {
        error = which + " cannot be decoded";
        return false;
      }
      std::uint8_t *target = page.Row(static_cast<int>(y));
      for (std::size_t i = 0; i < page.RowBytes(); ++i)
        target[i] = invert ? ~row[i] : row[i];
      // Bits past the width stay white whatever the file held there.
      if (width % 8 != 0) target[page.RowBytes() - 1] &= static_cast<std::uint8_t>(0xFF00 >> (width % 8));
    }
    pages.push_back(std::move(page));
  } while (TIFFReadDirectory(t));
  return true;
}

}  // namespace tqv::faxd
