// Recognising the text of received pages with Tesseract, run as a child process on a PNG of each
// page. Tesseract missing is no failure: the fax simply has no recognised text.
#pragma once

#include <string>
#include <vector>

#include "faxd/page_image.h"
#include "faxd/render_context.h"

namespace tqv::faxd {

struct OcrOptions {
  std::string program = "tesseract";
  std::string language = "eng";
  int timeoutSeconds = 120;  // per page
};

struct OcrResult {
  bool available = false;   // the program is installed
  bool recognised = false;  // every page was read
  std::string text;         // the pages' texts, a form feed between pages
  std::string error;        // why not, when available but not recognised
};

OcrResult RecognisePages(const std::vector<PageImage> &pages, const std::string &scratchDir,
                         const OcrOptions &options = {});

}  // namespace tqv::faxd
