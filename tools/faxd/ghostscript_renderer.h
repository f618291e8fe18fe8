// PDF and PostScript into fax pages: Ghostscript draws each page into a Group 4 TIFF at the fax
// resolution, fitted to 1728 pixels by an A4 length. Fails with Ghostscript's own first line.
#pragma once

#include <string>
#include <vector>

#include "faxd/page_image.h"
#include "faxd/render_context.h"

namespace tqv::faxd {

struct GhostscriptPage {
  int widthPixels = kFaxWidth;
  int heightPixels = 0;  // 0 = an A4 length at the context's resolution
  bool fitPage = true;   // scale the document's own page size into ours
};

// Renders the file at `input` (PDF or PostScript). False with the reason in `error`.
bool RenderWithGhostscript(const std::string &input, const RenderContext &context,
                           std::vector<PageImage> &pages, std::string &error,
                           const GhostscriptPage &page = {});

}  // namespace tqv::faxd
