// Header lines, set from the cached Courier glyphs: a fax costs no child process for its header
// lines.
#include "faxd/header_line.h"

#include "faxd/courier_glyphs.h"

namespace tqv::faxd {

namespace {

constexpr std::size_t kMaxHeaderText = 46;
constexpr std::size_t kHeaderColumns = 90;
constexpr int kHeaderLeft = (kFaxWidth - CourierGlyphs::kWidth * static_cast<int>(kHeaderColumns)) / 2;

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
  return CourierGlyphs::StripRows(resolution);
}

bool StampHeaderLines(std::vector<PageImage> &pages, std::string_view faxHeader, std::time_t sentAt,
                      const RenderContext &context, std::string &error) {
  if (pages.empty()) return true;
  const CourierGlyphs *glyphs = CourierGlyphs::For(context, error);
  if (!glyphs) return false;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    PageImage strip(kFaxWidth, HeaderRows(context.resolution), context.resolution);
    const std::string text =
        HeaderLineText(faxHeader, sentAt, static_cast<int>(i) + 1, static_cast<int>(pages.size()));
    glyphs->Set(strip, std::string_view(text).substr(0, kHeaderColumns), kHeaderLeft,
                CourierGlyphs::BaselineRow(context.resolution));
    // The strip replaces what was under it, so the header line stays readable.
    pages[i].Overlay(strip, 0);
  }
  return true;
}

}  // namespace tqv::faxd
