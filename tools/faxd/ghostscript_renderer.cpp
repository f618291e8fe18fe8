// Ghostscript as a child process (argv only, -dSAFER, a time limit). Its TIFF goes to the job's
// scratch directory and is read back with libtiff; a run that yields no page is a failure.
#include "faxd/ghostscript_renderer.h"

#include <atomic>
#include <filesystem>
#include <system_error>

#include "faxd/child_process.h"
#include "faxd/tiff_class_f.h"

namespace tqv::faxd {

bool RenderWithGhostscript(const std::string &input, const RenderContext &context,
                           std::vector<PageImage> &pages, std::string &error, const GhostscriptPage &page) {
  namespace fs = std::filesystem;
  static std::atomic<int> runs = 0;
  const fs::path output = fs::path(context.scratchDir) / ("gs-" + std::to_string(++runs) + ".tif");
  const int height = page.heightPixels > 0 ? page.heightPixels : A4Rows(context.resolution);
  std::vector<std::string> argv = {
      "gs", "-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", "-sDEVICE=tiffg4",
      "-r" + std::to_string(kFaxXResolution) + "x" + std::to_string(RowsPerInch(context.resolution)),
      "-g" + std::to_string(page.widthPixels) + "x" + std::to_string(height), "-dFIXEDMEDIA",
      // One page past the limit, so a longer document is told from one exactly as long.
      "-dLastPage=" + std::to_string(kMaxDocumentPages + 1), "-sOutputFile=" + output.string()};
  if (page.fitPage) argv.push_back("-dFitPage");
  // -f: the file name is never taken for an option, whatever it starts with.
  argv.insert(argv.end(), {"-f", input});
  const ChildResult run = RunChild(argv, context.timeoutSeconds);
  std::error_code ignored;
  const auto cleanUp = [&] { fs::remove(output, ignored); };
  if (!run.started) {
    error = "Ghostscript (gs) cannot be run; is the ghostscript package installed?";
    return false;
  }
  if (run.timedOut) {
    cleanUp();
    error = "Ghostscript took longer than " + std::to_string(context.timeoutSeconds) + " seconds";
    return false;
  }
  if (run.exitCode != 0 || !fs::exists(output, ignored)) {
    cleanUp();
    const std::string why = FirstLine(run.output);
    error = "Ghostscript cannot render it" + (why.empty() ? std::string() : ": " + why);
    return false;
  }
  const bool read = ReadFaxTiff(output.string(), pages, error);
  cleanUp();
  if (read && pages.empty()) error = "Ghostscript rendered no page";
  if (read && pages.size() > static_cast<std::size_t>(kMaxDocumentPages)) {
    pages.clear();
    error = "it has more than " + std::to_string(kMaxDocumentPages) + " pages";
    return false;
  }
  // gs writes the resolution it was given; the pages are at the job's whatever the TIFF says.
  if (read)
    for (PageImage &rendered : pages)
      if (rendered.GetResolution() != context.resolution) {
        PageImage copy(rendered.Width(), rendered.Height(), context.resolution);
        copy.Overlay(rendered, 0);
        rendered = std::move(copy);
      }
  return read && !pages.empty();
}

}  // namespace tqv::faxd
