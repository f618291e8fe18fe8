// PNG through libpng. Its errors arrive by longjmp, so every libpng call sits in one function
// with no C++ object alive across the setjmp.
#include "faxd/png_pages.h"

#include <png.h>

#include <cstdio>
#include <vector>

#include "faxd/tiff_class_f.h"

namespace tqv::faxd {

namespace {

// libpng's part, with plain C state only. 1 on success.
int WriteRows(std::FILE *file, const std::uint8_t *const *rows, int width, int height) {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  if (!png) return 0;
  png_infop info = png_create_info_struct(png);
  if (!info || setjmp(png_jmpbuf(png))) {
    png_destroy_write_struct(&png, info ? &info : nullptr);
    return 0;
  }
  png_init_io(png, file);
  png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 1,
               PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  // 204 dpi in pixels per metre.
  png_set_pHYs(png, info, 8031, 8031, PNG_RESOLUTION_METER);
  png_write_info(png, info);
  for (int y = 0; y < height; ++y)
    png_write_row(png, rows[y]);
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return 1;
}

}  // namespace

bool WritePng(const PageImage &page, const std::string &path, std::string &error) {
  const int repeat = page.GetResolution() == Resolution::Normal ? 2 : 1;
  // PNG grey has 0 for black, the page 1: every byte inverted.
  std::vector<std::uint8_t> bits(page.RowBytes() * static_cast<std::size_t>(page.Height()));
  std::vector<const std::uint8_t *> rows;
  for (int y = 0; y < page.Height(); ++y) {
    std::uint8_t *row = bits.data() + page.RowBytes() * static_cast<std::size_t>(y);
    for (std::size_t i = 0; i < page.RowBytes(); ++i)
      row[i] = static_cast<std::uint8_t>(~page.Row(y)[i]);
    for (int copy = 0; copy < repeat; ++copy)
      rows.push_back(row);
  }
  std::FILE *file = std::fopen(path.c_str(), "wb");
  if (!file) {
    error = "cannot create " + path;
    return false;
  }
  const int written =
      rows.empty() ? 0 : WriteRows(file, rows.data(), page.Width(), static_cast<int>(rows.size()));
  if (std::fclose(file) != 0 || !written) {
    std::remove(path.c_str());
    error = "cannot write " + path;
    return false;
  }
  return true;
}

bool WritePngPages(const std::string &tiffFile, const std::string &prefix, std::vector<std::string> &written,
                   std::string &error) {
  std::vector<PageImage> pages;
  if (!ReadFaxTiff(tiffFile, pages, error)) return false;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const std::string path = prefix + "-" + std::to_string(i + 1) + ".png";
    if (!WritePng(pages[i], path, error)) return false;
    written.push_back(path);
  }
  return true;
}

}  // namespace tqv::faxd
