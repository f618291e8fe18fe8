// One document into fax pages by its kind: TIFF converted, PDF and PostScript through Ghostscript,
// text in the fixed-width layout, RTF through the RTF subset. Any other kind fails with a reason
// naming it, so a job never goes out with a blank page in its place.
#pragma once

#include <string>
#include <vector>

#include "faxd/page_image.h"
#include "faxd/render_context.h"

namespace tqv::faxd {

// False with the reason in `error` ("a Word document ..." / "Ghostscript cannot render it: ...").
bool RenderDocument(const std::string &path, const RenderContext &context, std::vector<PageImage> &pages,
                    std::string &error);

}  // namespace tqv::faxd
