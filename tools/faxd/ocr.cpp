// Tesseract per page: PNG into the scratch directory, "tesseract page.png base" writes base.txt,
// so its notes on stderr never mix with the text. A page it fails on fails the whole recognition with its
// first line.
#include "faxd/ocr.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "faxd/child_process.h"
#include "faxd/png_pages.h"

namespace tqv::faxd {

OcrResult RecognisePages(const std::vector<PageImage> &pages, const std::string &scratchDir,
                         const OcrOptions &options) {
  OcrResult result;
  result.available = ProgramAvailable(options.program);
  if (!result.available) return result;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const std::string base = (std::filesystem::path(scratchDir) / ("ocr-" + std::to_string(i + 1))).string();
    if (!WritePng(pages[i], base + ".png", result.error)) return result;
    const ChildResult run =
        RunChild({options.program, base + ".png", base, "-l", options.language, "--dpi", "204"},
                 options.timeoutSeconds);
    std::ifstream textFile(base + ".txt", std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(textFile), {}};
    textFile.close();
    std::error_code ignored;
    std::filesystem::remove(base + ".png", ignored);
    std::filesystem::remove(base + ".txt", ignored);
    if (run.timedOut || run.exitCode != 0) {
      result.error = "Tesseract failed on page " + std::to_string(i + 1) + ": " +
                     (run.timedOut ? "it took too long" : FirstLine(run.output));
      return result;
    }
    if (i > 0) result.text += '\f';
    result.text += text;
  }
  result.recognised = true;
  return result;
}

}  // namespace tqv::faxd
