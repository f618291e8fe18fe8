// Fax pages as PNG pictures a person can look at: one grey 1-bit PNG per page with square pixels
// (a normal-resolution page has each row drawn twice) at 204 dpi. Fails with a one-line reason.
#pragma once

#include <string>
#include <vector>

#include "faxd/page_image.h"

namespace tqv::faxd {

bool WritePng(const PageImage &page, const std::string &path, std::string &error);

// Every page of the fax image `tiffFile` as <prefix>-1.png, <prefix>-2.png, ...; the names made
// go to `written`.
bool WritePngPages(const std::string &tiffFile, const std::string &prefix, std::vector<std::string> &written,
                   std::string &error);

}  // namespace tqv::faxd
