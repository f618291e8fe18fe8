// Styled paragraphs (from the RTF subset) as fax pages: Courier in its four faces at each run's
// size, words wrapped at the right margin, a new page when a page is full or a paragraph asks for
// one, drawn by Ghostscript. Layout cannot fail; drawing fails as Ghostscript does.
#pragma once

#include <string>
#include <vector>

#include "faxd/page_image.h"
#include "faxd/render_context.h"
#include "faxd/rtf_subset.h"

namespace tqv::faxd {

// One piece of text set at a place on a page, in points from the page's left and foot.
struct PlacedText {
  double x = 0;
  double baseline = 0;
  std::string text;
  TextStyle style;
};

using StyledPage = std::vector<PlacedText>;

// The pages of `paragraphs` on A4 within the margins of the fixed-width text layout; sizes are
// held between 6 and 72 points. At least one page.
std::vector<StyledPage> LayOutStyled(const std::vector<StyledParagraph> &paragraphs);

// A PostScript program that draws the pages.
std::string StyledPostScript(const std::vector<StyledPage> &pages);

bool RenderStyled(const std::vector<StyledParagraph> &paragraphs, const RenderContext &context,
                  std::vector<PageImage> &pages, std::string &error);

}  // namespace tqv::faxd
