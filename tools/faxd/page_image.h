// One fax page as a bilevel raster: 1728 pixels across at 204 dpi, rows at 98 or 196 dpi. Every
// renderer produces these and every writer takes them; nothing here can fail.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tqv::faxd {

inline constexpr int kFaxWidth = 1728;
inline constexpr int kFaxXResolution = 204;
// An A4 page: 297 mm of rows at each resolution.
inline constexpr int kA4RowsNormal = 1146;
inline constexpr int kA4RowsFine = 2292;

enum class Resolution { Normal, Fine };

inline int RowsPerInch(Resolution resolution) {
  return resolution == Resolution::Fine ? 196 : 98;
}
inline int A4Rows(Resolution resolution) {
  return resolution == Resolution::Fine ? kA4RowsFine : kA4RowsNormal;
}

class PageImage {
 public:
  PageImage() = default;
  PageImage(int width, int height, Resolution resolution);

  int Width() const { return width_; }
  int Height() const { return height_; }
  Resolution GetResolution() const { return resolution_; }
  std::size_t RowBytes() const { return rowBytes_; }

  // Packed row: most significant bit first, 1 = black.
  std::uint8_t *Row(int y) { return bits_.data() + rowBytes_ * static_cast<std::size_t>(y); }
  const std::uint8_t *Row(int y) const { return bits_.data() + rowBytes_ * static_cast<std::size_t>(y); }

  bool Black(int x, int y) const { return (Row(y)[x >> 3] >> (7 - (x & 7))) & 1; }
  void SetBlack(int x, int y, bool black);

  // Black pixels in rows [top, bottom), for checks and for telling a blank page.
  std::size_t CountBlack(int top, int bottom) const;
  std::size_t CountBlack() const { return CountBlack(0, height_); }

  // Copies `strip` over rows from `top` on, white where the strip is white; rows past either
  // image's end are left out.
  void Overlay(const PageImage &strip, int top);

 private:
  int width_ = 0;
  int height_ = 0;
  Resolution resolution_ = Resolution::Normal;
  std::size_t rowBytes_ = 0;
  std::vector<std::uint8_t> bits_;
};

}  // namespace tqv::faxd
