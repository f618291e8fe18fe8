// Courier at 10 points set straight into page rasters from glyphs that Ghostscript draws once per
// resolution and process. Only that first drawing can fail; setting text cannot.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "faxd/page_image.h"
#include "faxd/render_context.h"

namespace tqv::faxd {

class CourierGlyphs {
 public:
  // 6 points a character: exactly 17 pixels at 204 dpi, so glyphs drawn once in a row can be cut
  // apart and set again at any column.
  static constexpr int kWidth = 17;

  // The glyphs at the context's resolution, drawn the first time; nullptr with the reason when
  // Ghostscript cannot draw them (tried again next time).
  static const CourierGlyphs *For(const RenderContext &context, std::string &error);

  // Rows of one line of glyphs at a resolution, and the row of its baseline from its top.
  static int StripRows(Resolution resolution) { return resolution == Resolution::Fine ? 40 : 20; }
  static int BaselineRow(Resolution resolution) { return StripRows(resolution) * 2 / 3; }

  // Sets `text` with its first character's left edge at pixel `left` and its baseline on row
  // `baseline`, adding black only; what falls outside the page is left out. Characters outside
  // Latin-1's printable ones are left blank.
  void Set(PageImage &page, std::string_view text, int left, int baseline) const;

 private:
  CourierGlyphs(const PageImage &ascii, const PageImage &latin);

  Resolution resolution_;
  int rows_;
  // Row y of character c as 17 bits from bit 31 down, 0 for a character without a glyph: text
  // is set a row of a glyph at a time, not a pixel.
  std::vector<std::uint32_t> bits_;  // 256 * rows_
};

}  // namespace tqv::faxd
