// The fax header line at the top of every page: the sender's header text, the time of sending and
// "Page n/m" in Courier, laid over each page's top rows. Characters outside Latin-1's printable
// ones are left blank.
#pragma once

#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "faxd/page_image.h"
#include "faxd/render_context.h"

namespace tqv::faxd {

// "2026-11-24 13:05  ACME SALES +1 555 0100  Page 2/3"; the header text cut to 46 characters.
std::string HeaderLineText(std::string_view faxHeader, std::time_t sentAt, int page, int pageCount);

// Rows the header strip takes at a resolution.
int HeaderRows(Resolution resolution);

// Stamps the header line over the top rows of every page. False with the reason; the pages are
// then unchanged.
bool StampHeaderLines(std::vector<PageImage> &pages, std::string_view faxHeader, std::time_t sentAt,
                      const RenderContext &context, std::string &error);

}  // namespace tqv::faxd
