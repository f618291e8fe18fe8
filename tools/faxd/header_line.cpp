// Header lines. Ghostscript draws the font once per resolution and process; each line is then set
// from its glyphs, so a fax costs no child process for its header lines.
#include "faxd/header_line.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <system_error>

#include "faxd/ghostscript_renderer.h"
#include "faxd/text_page.h"

namespace tqv::faxd {

namespace {

constexpr std::size_t kMaxHeaderText = 46;
// Courier at 10 points is 6 points a character: exactly 17 pixels at 204 dpi, so glyphs drawn
// once in a row can be cut apart and set again at any column.
constexpr int kGlyphWidth = 17;
constexpr int kFontColumns = 96;
constexpr int kGlyphLeft = (kFaxWidth - kGlyphWidth * kFontColumns) / 2;
constexpr std::size_t kHeaderColumns = 90;
constexpr int kHeaderLeft = (kFaxWidth - kGlyphWidth * static_cast<int>(kHeaderColumns)) / 2;

// The printable characters of Latin-1 in header-strip size: 32 to 126, and 160 to 255.
struct HeaderFont {
  PageImage ascii;
  PageImage latin;
};

// Draws the font with Ghostscript the first time a resolution is asked for; nullptr with the
// reason when that fails (and it is tried again next time).
const HeaderFont *FontFor(const RenderContext &context, std::string &error) {
  namespace fs = std::filesystem;
  static std::mutex guard;
  static std::map<Resolution, HeaderFont> fonts;
  const std::lock_guard<std::mutex> lock(guard);
  if (const auto found = fonts.find(context.resolution); found != fonts.end()) return &found->second;
  std::string ascii, latin;
  for (int c = 32; c <= 126; ++c)
    ascii += static_cast<char>(c);
  for (int c = 160; c <= 255; ++c)
    latin += static_cast<char>(c);
  // The baseline a third up the strip leaves room below for descenders.
  const double heightPoints = HeaderRows(context.resolution) * 72.0 / RowsPerInch(context.resolution);
  const fs::path file = fs::path(context.scratchDir) / "header-font.ps";
  {
    std::ofstream out(file, std::ios::binary);
    out << TextPostScript({{ascii}, {latin}}, {kFontColumns, 1, heightPoints / 3});
    if (!out.flush()) {
      error = "cannot write " + file.string();
      return nullptr;
    }
  }
  std::vector<PageImage> rendered;
  const bool ok = RenderWithGhostscript(file.string(), context, rendered, error,
                                        {kFaxWidth, HeaderRows(context.resolution), false});
  std::error_code ignored;
  fs::remove(file, ignored);
  if (!ok) return nullptr;
  if (rendered.size() != 2) {
    error = "Ghostscript drew " + std::to_string(rendered.size()) + " pages of the header font";
    return nullptr;
  }
  return &(fonts[context.resolution] = HeaderFont{std::move(rendered[0]), std::move(rendered[1])});
}

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
  if (pages.empty()) return true;
  const HeaderFont *font = FontFor(context, error);
  if (!font) return false;
  const int rows = HeaderRows(context.resolution);
  for (std::size_t i = 0; i < pages.size(); ++i) {
    PageImage strip(kFaxWidth, rows, context.resolution);
    const std::string text =
        HeaderLineText(faxHeader, sentAt, static_cast<int>(i) + 1, static_cast<int>(pages.size()));
    for (std::size_t column = 0; column < text.size() && column < kHeaderColumns; ++column) {
      const auto c = static_cast<unsigned char>(text[column]);
      const PageImage *glyphs = c >= 32 && c <= 126 ? &font->ascii : c >= 160 ? &font->latin : nullptr;
      if (!glyphs) continue;
      const int from = kGlyphLeft + kGlyphWidth * (c >= 160 ? c - 160 : c - 32);
      const int to = kHeaderLeft + kGlyphWidth * static_cast<int>(column);
      for (int y = 0; y < rows; ++y)
        for (int x = 0; x < kGlyphWidth; ++x)
          if (glyphs->Black(from + x, y)) strip.SetBlack(to + x, y, true);
    }
    pages[i].Overlay(strip, 0);
  }
  return true;
}

}  // namespace tqv::faxd
