// The glyph cache. Ghostscript draws the two rows of characters as two short pages with the text
// layout's own program, so the glyphs are those of every other Courier page.
#include "faxd/courier_glyphs.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <system_error>

#include "faxd/ghostscript_renderer.h"
#include "faxd/text_page.h"

namespace tqv::faxd {

namespace {

constexpr int kFontColumns = 96;
constexpr int kGlyphLeft = (kFaxWidth - CourierGlyphs::kWidth * kFontColumns) / 2;

}  // namespace

const CourierGlyphs *CourierGlyphs::For(const RenderContext &context, std::string &error) {
  namespace fs = std::filesystem;
  static std::mutex guard;
  static std::map<Resolution, std::unique_ptr<CourierGlyphs>> cache;
  const std::lock_guard<std::mutex> lock(guard);
  if (const auto found = cache.find(context.resolution); found != cache.end()) return found->second.get();
  std::string ascii, latin;
  for (int c = 32; c <= 126; ++c)
    ascii += static_cast<char>(c);
  for (int c = 160; c <= 255; ++c)
    latin += static_cast<char>(c);
  const int rows = StripRows(context.resolution);
  const double baselineFromFoot =
      (rows - BaselineRow(context.resolution)) * 72.0 / RowsPerInch(context.resolution);
  const fs::path file = fs::path(context.scratchDir) / "courier-glyphs.ps";
  {
    std::ofstream out(file, std::ios::binary);
    out << TextPostScript({{ascii}, {latin}}, {kFontColumns, 1, baselineFromFoot});
    if (!out.flush()) {
      error = "cannot write " + file.string();
      return nullptr;
    }
  }
  std::vector<PageImage> rendered;
  const bool ok = RenderWithGhostscript(file.string(), context, rendered, error, {kFaxWidth, rows, false});
  std::error_code ignored;
  fs::remove(file, ignored);
  if (!ok) return nullptr;
  if (rendered.size() != 2) {
    error = "Ghostscript drew " + std::to_string(rendered.size()) + " rows of Courier glyphs, not 2";
    return nullptr;
  }
  auto &slot = cache[context.resolution];
  slot.reset(new CourierGlyphs(rendered[0], rendered[1]));
  return slot.get();
}

CourierGlyphs::CourierGlyphs(const PageImage &ascii, const PageImage &latin)
    : resolution_(ascii.GetResolution()),
      rows_(ascii.Height()),
      bits_(256 * static_cast<std::size_t>(ascii.Height()), 0) {
  for (int c = 32; c < 256; ++c) {
    const PageImage *glyphs = c <= 126 ? &ascii : c >= 160 ? &latin : nullptr;
    if (!glyphs) continue;
    const int from = kGlyphLeft + kWidth * (c >= 160 ? c - 160 : c - 32);
    for (int y = 0; y < rows_; ++y) {
      std::uint32_t row = 0;
      for (int x = 0; x < kWidth; ++x)
        if (glyphs->Black(from + x, y)) row |= 0x80000000u >> x;
      bits_[static_cast<std::size_t>(c) * static_cast<std::size_t>(rows_) + static_cast<std::size_t>(y)] =
          row;
    }
  }
}

void CourierGlyphs::Set(PageImage &page, std::string_view text, int left, int baseline) const {
  const int top = baseline - BaselineRow(resolution_);
  const auto rowBytes = static_cast<int>(page.RowBytes());
  for (int y = 0; y < rows_; ++y) {
    if (top + y < 0 || top + y >= page.Height()) continue;
    std::uint8_t *row = page.Row(top + y);
    for (std::size_t column = 0; column < text.size(); ++column) {
      const auto c = static_cast<unsigned char>(text[column]);
      const std::uint32_t bits =
          bits_[static_cast<std::size_t>(c) * static_cast<std::size_t>(rows_) + static_cast<std::size_t>(y)];
      const int to = left + kWidth * static_cast<int>(column);
      if (bits == 0 || to < 0) continue;
      // 17 bits shifted to their place span at most four bytes.
      const std::uint64_t placed = static_cast<std::uint64_t>(bits) << 8 >> (to & 7);
      for (int k = 0; k < 5; ++k) {
        const int byte = (to >> 3) + k;
        if (byte >= rowBytes) break;
        row[byte] |= static_cast<std::uint8_t>(placed >> (32 - 8 * k));
      }
    }
  }
}

}  // namespace tqv::faxd
