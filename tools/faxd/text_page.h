// Plain text as fax pages: a fixed-width layout (80 columns, 60 lines, Courier 10 points). Layout
// cannot fail; drawing fails only when the Courier glyphs cannot be drawn.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "faxd/page_image.h"
#include "faxd/render_context.h"

namespace tqv::faxd {

inline constexpr double kA4HeightPoints = 841.89;

struct TextLayout {
  int columns = 80;
  int linesPerPage = 60;
  // Points from the page's foot to the first line's baseline: an A4 page less a top margin that
  // leaves room for the header line.
  double firstBaseline = kA4HeightPoints - 60;
};

using TextPage = std::vector<std::string>;

// Lines and pages of `text`: CR LF, CR and LF end lines, a tab goes to the next multiple of 8, a
// form feed starts a new page, a long line wraps at its last space before the edge (or at the edge),
// other control characters become spaces. At least one page, possibly empty; no empty page at the end.
std::vector<TextPage> LayOutText(std::string_view text, const TextLayout &layout = {});

// `text` as a PostScript string literal: parentheses and backslashes escaped, bytes outside
// printable ASCII as octal escapes, so no byte of a document can end the string early.
std::string PostScriptString(const std::string &text);

// A PostScript program that draws the pages on A4 fax pages; Windows ANSI characters are drawn
// from the Latin-1 set.
std::string TextPostScript(const std::vector<TextPage> &pages, const TextLayout &layout = {});

// Lays out and sets `text`; the same pages as Ghostscript drawing TextPostScript's program.
bool RenderText(std::string_view text, const RenderContext &context, std::vector<PageImage> &pages,
                std::string &error);

}  // namespace tqv::faxd
