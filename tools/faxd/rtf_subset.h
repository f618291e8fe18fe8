// The RTF subset the fax service draws, read into paragraphs of styled text. It never fails: what
// it cannot read it skips.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tqv::faxd {

struct TextStyle {
  bool bold = false;
  bool italic = false;
  int halfPoints = 24;  // \fs counts half points; RTF's default is 12 points

  bool operator==(const TextStyle &) const = default;
};

struct StyledRun {
  std::string text;
  TextStyle style;

  bool operator==(const StyledRun &) const = default;
};

struct StyledParagraph {
  std::vector<StyledRun> runs;
  bool newPage = false;  // starts on a new page (\page before it)

  bool operator==(const StyledParagraph &) const = default;
  std::string Text() const;
};

// The paragraphs of an RTF document, each run in one style; adjacent runs of one style are merged.
// The subset: paragraphs (\par, \line, \page), bold (\b, \b0), italic (\i, \i0), sizes (\fsN),
// \plain, tabs, table cells and rows as text (cells joined by " | ", a row per line), escaped and
// hex characters (\'hh, \{ \} \\), and \uN as its Latin-1 character or else its fallback. Every
// font is drawn as Courier; colours, pictures, headers and other destinations are left out.
std::vector<StyledParagraph> ParseRtf(std::string_view rtf);

// The text alone: paragraphs ended by LF, a page break as FF.
std::string RtfToText(std::string_view rtf);

}  // namespace tqv::faxd
