// Header lines. All strips come from one Ghostscript run (one short page per fax page), so a long
// fax costs one child process, not one per page.
#include "faxd/header_line.h"

#include <filesystem>
#include <fstream>
#include <system_error>

#include "faxd/ghostscript_renderer.h"
#include "faxd/text_page.h"

namespace tqv::faxd {

namespace {

constexpr std::size_t kMaxHeaderText = 46;

}  // namespace

std::string HeaderLineText(std::string_view faxHeader, std::time_t sentAt, int page, int pageCount) {
  char when[32] = "";
  std::tm local{};
  if (localtime_r(&sentAt, &local)) std::strftime(when, sizeof when, "%Y-%m-%d %H:%M", &local);
  std::string line = when;
  if (!faxHeader.empty()) line += "  " + std::string(faxHeader.substr(0, kMaxHeaderText));
  return line + "  Page " + std::to_string(page) + "/" + std::to_string(pageCount);
}

int HeaderRows(Resolution resolution) {
  return resolution == Resolution::Fine ? 40 : 20;
}

bool StampHeaderLines(std::vector<PageImage> &pages, std::string_view faxHeader, std::time_t sentAt,
                      const RenderContext &context, std::string &error) {
  namespace fs = std::filesystem;
  if (pages.empty()) return true;
  // A strip is a text page of one line; its height in points follows from the rows.
  const double heightPoints = HeaderRows(context.resolution) * 72.0 / RowsPerInch(context.resolution);
  std::vector<TextPage> strips;
  for (std::size_t i = 0; i < pages.size(); ++i)
    strips.push_back(
        {HeaderLineText(faxHeader, sentAt, static_cast<int>(i) + 1, static_cast<int>(pages.size()))});
  // The baseline a third up the strip leaves room below for descenders.
  const std::string program = TextPostScript(strips, {90, 1, heightPoints / 3});
  static int runs = 0;
  const fs::path file = fs::path(context.scratchDir) / ("header-" + std::to_string(++runs) + ".ps");
  {
    std::ofstream out(file, std::ios::binary);
    out << program;
    if (!out.flush()) {
      error = "cannot write " + file.string();
      return false;
    }
  }
  std::vector<PageImage> rendered;
  const bool ok = RenderWithGhostscript(file.string(), context, rendered, error,
                                        {kFaxWidth, HeaderRows(context.resolution), false});
  std::error_code ignored;
  fs::remove(file, ignored);
  if (!ok) return false;
  if (rendered.size() != pages.size()) {
    error = "Ghostscript drew " + std::to_string(rendered.size()) + " header lines for " +
            std::to_string(pages.size()) + " pages";
    return false;
  }
  for (std::size_t i = 0; i < pages.size(); ++i)
    pages[i].Overlay(rendered[i], 0);
  return true;
}

}  // namespace tqv::faxd
