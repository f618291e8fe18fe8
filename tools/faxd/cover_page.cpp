// Placeholders are found in one left-to-right pass over the original text, so a value that itself
// holds "<...>" is never expanded.
#include "faxd/cover_page.h"

#include <algorithm>

namespace tqv::faxd {

std::string FillPlaceholders(std::string_view text, const CoverFields &fields) {
  std::string filled;
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t open = text.find('<', at);
    if (open == std::string_view::npos) break;
    const std::size_t close = text.find('>', open + 1);
    if (close == std::string_view::npos) break;
    filled.append(text.substr(at, open - at));
    const auto field = fields.find(text.substr(open + 1, close - open - 1));
    if (field != fields.end()) {
      filled += field->second;
      at = close + 1;
    } else {
      // Not ours: keep the '<' and look again from the next character, which may open one.
      filled += '<';
      at = open + 1;
    }
  }
  filled.append(text.substr(at));
  return filled;
}

void FillPlaceholders(std::vector<StyledParagraph> &paragraphs, const CoverFields &fields) {
  for (StyledParagraph &paragraph : paragraphs)
    for (StyledRun &run : paragraph.runs)
      run.text = FillPlaceholders(run.text, fields);
}

std::vector<StyledParagraph> ParagraphsOf(std::string_view document) {
  if (document.starts_with("{\\rtf")) return ParseRtf(document);
  constexpr TextStyle kPlain{false, false, 20};
  std::vector<StyledParagraph> paragraphs;
  StyledParagraph current;
  bool open = false;
  const auto finish = [&] {
    paragraphs.push_back(std::move(current));
    current = {};
    open = false;
  };
  for (std::size_t i = 0; i < document.size(); ++i) {
    const char c = document[i];
    if (c == '\r' || c == '\n') {
      if (c == '\r' && i + 1 < document.size() && document[i + 1] == '\n') ++i;
      finish();
    } else if (c == '\f') {
      // A form feed ends the line it is on; what follows starts a page.
      if (open) finish();
      current.newPage = true;
    } else {
      if (current.runs.empty()) current.runs.push_back({{}, kPlain});
      current.runs.back().text += c;
      open = true;
    }
  }
  if (open) finish();
  while (!paragraphs.empty() && paragraphs.back().runs.empty())
    paragraphs.pop_back();
  return paragraphs;
}

std::vector<StyledParagraph> OnTemplate(std::vector<StyledParagraph> templateParagraphs,
                                        std::string_view message) {
  std::vector<StyledParagraph> lines = ParagraphsOf(message);
  for (std::size_t p = 0; p < templateParagraphs.size(); ++p) {
    const StyledParagraph &paragraph = templateParagraphs[p];
    for (std::size_t r = 0; r < paragraph.runs.size(); ++r) {
      const std::size_t at = paragraph.runs[r].text.find("<MESSAGE>");
      if (at == std::string::npos) continue;
      StyledParagraph before, after;
      before.newPage = paragraph.newPage;
      before.runs.assign(paragraph.runs.begin(), paragraph.runs.begin() + static_cast<std::ptrdiff_t>(r));
      before.runs.push_back({paragraph.runs[r].text.substr(0, at), paragraph.runs[r].style});
      after.runs.push_back({paragraph.runs[r].text.substr(at + 9), paragraph.runs[r].style});
      after.runs.insert(after.runs.end(), paragraph.runs.begin() + static_cast<std::ptrdiff_t>(r) + 1,
                        paragraph.runs.end());
      std::vector<StyledParagraph> result(templateParagraphs.begin(),
                                          templateParagraphs.begin() + static_cast<std::ptrdiff_t>(p));
      if (!before.Text().empty() || before.newPage) result.push_back(std::move(before));
      result.insert(result.end(), lines.begin(), lines.end());
      if (!after.Text().empty()) result.push_back(std::move(after));
      result.insert(result.end(), templateParagraphs.begin() + static_cast<std::ptrdiff_t>(p) + 1,
                    templateParagraphs.end());
      return result;
    }
  }
  // No placeholder: a blank line between the template's text and the message.
  if (!templateParagraphs.empty()) templateParagraphs.emplace_back();
  templateParagraphs.insert(templateParagraphs.end(), lines.begin(), lines.end());
  return templateParagraphs;
}

}  // namespace tqv::faxd
