// Bilevel page rasters: packed rows, most significant bit first. Pure memory work; it cannot fail
// short of running out of memory.
#include "faxd/page_image.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace tqv::faxd {

PageImage::PageImage(int width, int height, Resolution resolution)
    : width_(width),
      height_(height),
      resolution_(resolution),
      rowBytes_((static_cast<std::size_t>(width) + 7) / 8),
      bits_(rowBytes_ * static_cast<std::size_t>(height), 0) {}

void PageImage::SetBlack(int x, int y, bool black) {
  std::uint8_t &byte = Row(y)[x >> 3];
  const auto mask = static_cast<std::uint8_t>(0x80 >> (x & 7));
  byte = black ? (byte | mask) : (byte & ~mask);
}

std::size_t PageImage::CountBlack(int top, int bottom) const {
  std::size_t count = 0;
  for (int y = std::max(top, 0); y < std::min(bottom, height_); ++y)
    for (std::size_t i = 0; i < rowBytes_; ++i)
      count += static_cast<std::size_t>(std::popcount(Row(y)[i]));
  return count;
}

void PageImage::Overlay(const PageImage &strip, int top) {
  const std::size_t bytes = std::min(rowBytes_, strip.rowBytes_);
  for (int y = 0; y < strip.height_ && top + y < height_; ++y) {
    if (top + y < 0) continue;
    std::memcpy(Row(top + y), strip.Row(y), bytes);
  }
}

}  // namespace tqv::faxd
