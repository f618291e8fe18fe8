// A TIFF document of any kind (bilevel, grey, colour; any size and resolution) made into fax
// pages: scaled to 1728 pixels across, rows at the job's resolution, long images cut into A4
// lengths, grey thresholded at half. Fails when libtiff cannot read a page.
#pragma once

#include <string>
#include <vector>

#include "faxd/page_image.h"
#include "faxd/render_context.h"

namespace tqv::faxd {

// `image` holds width * height luminance bytes (0 = black); `xDpi` and `yDpi` its resolution
// (equal when unknown). Nearest-neighbour scaling; pages of at most one A4 length.
std::vector<PageImage> FaxPagesOf(const std::vector<std::uint8_t> &image, int width, int height, float xDpi,
                                  float yDpi, Resolution resolution);

bool RenderTiffDocument(const std::string &path, const RenderContext &context, std::vector<PageImage> &pages,
                        std::string &error);

}  // namespace tqv::faxd
