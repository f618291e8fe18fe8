// Styled pages. Courier's advance is 0.6 of its size whatever the face, so the layout measures
// text without a font file; wrapping is by words, a word wider than the line by characters.
#include "faxd/styled_page.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "faxd/ghostscript_renderer.h"
#include "faxd/text_page.h"

namespace tqv::faxd {

namespace {

constexpr double kLeft = 64.94;  // as the 80-column text layout: 480 points centred on the fax width
constexpr double kRight = kLeft + 480;
constexpr double kTop = 841.89 - 60;
constexpr double kBottom = 40;
constexpr double kTabStop = 48;  // eight characters of 10 points

double PointsOf(const TextStyle &style) {
  return std::clamp(style.halfPoints / 2.0, 6.0, 72.0);
}

double Advance(const TextStyle &style) {
  return 0.6 * PointsOf(style);
}

const char *FontName(const TextStyle &style) {
  return style.bold ? (style.italic ? "/CBI" : "/CB") : (style.italic ? "/CI" : "/CR");
}

// Sets words on lines and lines on pages.
class Typesetter {
 public:
  explicit Typesetter(std::vector<StyledPage> &pages) : pages_(pages) { pages_.emplace_back(); }

  void Paragraph(const StyledParagraph &paragraph) {
    if (paragraph.newPage && !(line_.empty() && pages_.back().empty() && baseline_ == kTop)) NewPage();
    for (const StyledRun &run : paragraph.runs) {
      std::size_t at = 0;
      while (at < run.text.size()) {
        const char c = run.text[at];
        if (c == ' ' || c == '\t') {
          x_ = c == '\t' ? (std::floor((x_ - kLeft) / kTabStop) + 1) * kTabStop + kLeft
                         : x_ + Advance(run.style);
          ++at;
          continue;
        }
        const std::size_t end = std::min(run.text.find_first_of(" \t", at), run.text.size());
        Word(run.text.substr(at, end - at), run.style);
        at = end;
      }
    }
    // An empty paragraph still takes a line of the size it would have had.
    if (paragraph.runs.empty()) lineSize_ = std::max(lineSize_, 12.0);
    EndLine();
  }

 private:
  void Word(std::string word, const TextStyle &style) {
    const double advance = Advance(style);
    while (!word.empty()) {
      const double width = advance * static_cast<double>(word.size());
      if (x_ + width <= kRight) {
        line_.push_back({x_, 0, word, style});
        lineSize_ = std::max(lineSize_, PointsOf(style));
        x_ += width;
        return;
      }
      if (!line_.empty()) {
        EndLine();
        continue;
      }
      // Alone on its line and still too wide: as much as fits, the rest on the next line.
      const auto fits = std::max<std::size_t>(1, static_cast<std::size_t>((kRight - x_) / advance));
      line_.push_back({x_, 0, word.substr(0, fits), style});
      lineSize_ = std::max(lineSize_, PointsOf(style));
      word.erase(0, fits);
      EndLine();
    }
  }

  void EndLine() {
    const double height = (lineSize_ > 0 ? lineSize_ : 12.0) * 1.2;
    if (baseline_ - height < kBottom && !(pages_.back().empty() && baseline_ == kTop)) NewPage();
    baseline_ -= height;
    for (PlacedText &text : line_) {
      text.baseline = baseline_ + height * 0.2;
      pages_.back().push_back(std::move(text));
    }
    line_.clear();
    lineSize_ = 0;
    x_ = kLeft;
  }

  void NewPage() {
    pages_.emplace_back();
    baseline_ = kTop;
  }

  std::vector<StyledPage> &pages_;
  std::vector<PlacedText> line_;
  double lineSize_ = 0;
  double x_ = kLeft;
  double baseline_ = kTop;
};

}  // namespace

std::vector<StyledPage> LayOutStyled(const std::vector<StyledParagraph> &paragraphs) {
  std::vector<StyledPage> pages;
  Typesetter typesetter(pages);
  for (const StyledParagraph &paragraph : paragraphs)
    typesetter.Paragraph(paragraph);
  // A trailing page with nothing on it (the document ended in a page break) is no page.
  while (pages.size() > 1 && pages.back().empty())
    pages.pop_back();
  return pages;
}

std::string StyledPostScript(const std::vector<StyledPage> &pages) {
  std::string program = "%!PS\n";
  // The four Courier faces with the Latin-1 characters, as /CR /CB /CI /CBI.
  for (const char *face :
       {"/CR /Courier", "/CB /Courier-Bold", "/CI /Courier-Oblique", "/CBI /Courier-BoldOblique"}) {
    const std::string names(face);
    const std::size_t space = names.find(' ');
    program += names.substr(space + 1) +
               " findfont dup length dict begin { 1 index /FID ne { def } { pop pop } ifelse } forall\n"
               "/Encoding ISOLatin1Encoding def currentdict end " +
               names.substr(0, space) + " exch definefont pop\n";
  }
  for (const StyledPage &page : pages) {
    for (const PlacedText &text : page)
      program += std::string(FontName(text.style)) + " " + std::to_string(PointsOf(text.style)) +
                 " selectfont " + std::to_string(text.x) + " " + std::to_string(text.baseline) + " moveto " +
                 PostScriptString(text.text) + " show\n";
    program += "showpage\n";
  }
  return program;
}

bool RenderStyled(const std::vector<StyledParagraph> &paragraphs, const RenderContext &context,
                  std::vector<PageImage> &pages, std::string &error) {
  namespace fs = std::filesystem;
  const fs::path program = fs::path(context.scratchDir) / "styled.ps";
  {
    std::ofstream out(program, std::ios::binary);
    out << StyledPostScript(LayOutStyled(paragraphs));
    if (!out.flush()) {
      error = "cannot write " + program.string();
      return false;
    }
  }
  const bool rendered = RenderWithGhostscript(program.string(), context, pages, error, {kFaxWidth, 0, false});
  std::error_code ignored;
  fs::remove(program, ignored);
  return rendered;
}

}  // namespace tqv::faxd
