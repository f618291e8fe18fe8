// Fixed-width text pages. The layout is pure; the pages are set from the cached Courier glyphs,
// whose first drawing by Ghostscript is the only thing that can fail.
#include "faxd/text_page.h"

#include <cmath>

#include "faxd/courier_glyphs.h"

namespace tqv::faxd {

namespace {

constexpr int kTabWidth = 8;

// One physical line of text split into lines that fit.
void WrapLine(std::string line, int columns, TextPage &into, std::vector<TextPage> &pages, int linesPerPage) {
  const auto add = [&](std::string piece) {
    if (static_cast<int>(into.size()) == linesPerPage) {
      pages.push_back(std::move(into));
      into.clear();
    }
    into.push_back(std::move(piece));
  };
  while (static_cast<int>(line.size()) > columns) {
    std::size_t cut = line.rfind(' ', static_cast<std::size_t>(columns));
    if (cut == std::string::npos || cut == 0) cut = static_cast<std::size_t>(columns);
    add(line.substr(0, cut));
    std::size_t next = cut;
    while (next < line.size() && line[next] == ' ')
      ++next;
    line.erase(0, next);
  }
  add(std::move(line));
}

}  // namespace

std::string PostScriptString(const std::string &text) {
  std::string quoted = "(";
  for (unsigned char c : text) {
    if (c == '(' || c == ')' || c == '\\') {
      quoted += '\\';
      quoted += static_cast<char>(c);
    } else if (c < 0x20 || c >= 0x7F) {
      const char octal[] = {'\\', static_cast<char>('0' + (c >> 6)), static_cast<char>('0' + ((c >> 3) & 7)),
                            static_cast<char>('0' + (c & 7)), 0};
      quoted += octal;
    } else {
      quoted += static_cast<char>(c);
    }
  }
  return quoted + ")";
}

std::vector<TextPage> LayOutText(std::string_view text, const TextLayout &layout) {
  std::vector<TextPage> pages;
  TextPage page;
  std::string line;
  bool lineOpen = false;
  const auto endLine = [&] {
    WrapLine(std::move(line), layout.columns, page, pages, layout.linesPerPage);
    line.clear();
    lineOpen = false;
  };
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\r' || c == '\n') {
      if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
      endLine();
    } else if (c == '\f') {
      if (lineOpen) endLine();
      pages.push_back(std::move(page));
      page.clear();
    } else if (c == '\t') {
      line.append(kTabWidth - line.size() % kTabWidth, ' ');
      lineOpen = true;
    } else {
      line += static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? ' ' : c;
      lineOpen = true;
    }
  }
  if (lineOpen) endLine();
  // Trailing blank lines would only push an empty page out.
  while (!page.empty() && page.back().find_first_not_of(' ') == std::string::npos)
    page.pop_back();
  if (!page.empty() || pages.empty()) pages.push_back(std::move(page));
  return pages;
}

std::string TextPostScript(const std::vector<TextPage> &pages, const TextLayout &layout) {
  // A4 in points with a 10-point Courier: 6 points a character, 12 a line, centred across.
  const double width = kFaxWidth * 72.0 / kFaxXResolution;
  const double left = (width - 6.0 * layout.columns) / 2;
  std::string program =
      "%!PS\n"
      "/Courier findfont dup length dict begin { 1 index /FID ne { def } { pop pop } ifelse } forall\n"
      "/Encoding ISOLatin1Encoding def currentdict end /CourierLatin1 exch definefont pop\n"
      "/CourierLatin1 findfont 10 scalefont setfont\n";
  for (const TextPage &page : pages) {
    double y = layout.firstBaseline;
    for (const std::string &line : page) {
      if (!line.empty())
        program +=
            std::to_string(left) + " " + std::to_string(y) + " moveto " + PostScriptString(line) + " show\n";
      y -= 12;
    }
    program += "showpage\n";
  }
  return program;
}

bool RenderText(std::string_view text, const RenderContext &context, std::vector<PageImage> &pages,
                std::string &error) {
  const CourierGlyphs *glyphs = CourierGlyphs::For(context, error);
  if (!glyphs) return false;
  const TextLayout layout;
  // The places of the PostScript program: 12 points a line from the first baseline, the columns
  // centred across the page.
  const double rowsPerPoint = RowsPerInch(context.resolution) / 72.0;
  const int left = (kFaxWidth - CourierGlyphs::kWidth * layout.columns) / 2;
  pages.clear();
  for (const TextPage &laidOut : LayOutText(text, layout)) {
    PageImage page(kFaxWidth, A4Rows(context.resolution), context.resolution);
    for (std::size_t line = 0; line < laidOut.size(); ++line) {
      const double fromTop = kA4HeightPoints - layout.firstBaseline + 12.0 * static_cast<double>(line);
      glyphs->Set(page, laidOut[line], left, static_cast<int>(std::lround(fromTop * rowsPerPoint)));
    }
    pages.push_back(std::move(page));
  }
  return true;
}

}  // namespace tqv::faxd
