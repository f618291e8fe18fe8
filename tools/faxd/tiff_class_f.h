// Fax image files: pages written as TIFF Class F (CCITT Group 3, 1728 pixels, 204 dpi across), and
// bilevel TIFF files of any compression read back into pages. Both fail with a one-line reason.
#pragma once

#include <string>
#include <vector>

#include "faxd/page_image.h"

namespace tqv::faxd {

// libtiff prints its warnings and errors to stderr; a service's log must hold only its own lines.
void SilenceLibtiff();

// Writes every page, in order, to a new file at `path`. False with the reason in `error`.
bool WriteClassF(const std::string &path, const std::vector<PageImage> &pages, std::string &error);

// Reads the pages of a bilevel TIFF file of any width and compression; a page of 150 rows per inch
// or more counts as fine. False with the reason when the file is no TIFF, has no page or a page is not
// bilevel.
bool ReadFaxTiff(const std::string &path, std::vector<PageImage> &pages, std::string &error);

}  // namespace tqv::faxd
