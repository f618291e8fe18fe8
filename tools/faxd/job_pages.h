// All pages of one job, in the order a fax service sends them: the cover page (its fields from the
// job record), the message text on its template, then each document by its kind; the header line
// over every page. A part that cannot be rendered fails the whole job with a reason naming it, so
// no fax goes out with a page missing.
#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "faxd/cover_page.h"
#include "faxd/page_image.h"
#include "faxd/render_context.h"

namespace tqv::faxd {

// What the record says about a job's pages; paths are the native paths of the files.
struct JobDocuments {
  std::string coverPage{};
  std::string templateFile{};
  std::string messageText{};
  std::vector<std::string> files{};
  std::string faxHeader{};
  CoverFields coverFields{};  // without <PAGES>, which is counted here
  bool textFileJob = false;
};

// The job's pages; false with the reason ("document 2 (A1B2C3D4.DOC) is ...").
bool RenderJob(const JobDocuments &job, std::time_t sentAt, const RenderContext &context,
               std::vector<PageImage> &pages, std::string &error);

// The documents and cover fields of a job record (TQV_JOB_RECORD_SIZE bytes).
JobDocuments DocumentsOfJob(const unsigned char *job, std::time_t sentAt);

}  // namespace tqv::faxd
