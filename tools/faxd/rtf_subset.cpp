// RTF to styled paragraphs: one pass over the groups with a stack of styles and "skipped" flags, so
// a destination that is left out takes everything nested inside it along.
#include "faxd/rtf_subset.h"

#include <cctype>
#include <cstdlib>
#include <set>
#include <vector>

namespace tqv::faxd {

namespace {

// Groups whose text is no part of the page.
const std::set<std::string, std::less<>> kSkippedDestinations = {
    "fonttbl",           "colortbl",     "stylesheet", "info",      "pict",      "header",  "footer",
    "headerl",           "headerr",      "footerl",    "footerr",   "listtable", "object",  "themedata",
    "datastore",         "latentstyles", "xmlnstbl",   "generator", "rsidtbl",   "filetbl", "revtbl",
    "listoverridetable", "fldinst"};

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::string StyledParagraph::Text() const {
  std::string text;
  for (const StyledRun &run : runs)
    text += run.text;
  return text;
}

std::vector<StyledParagraph> ParseRtf(std::string_view rtf) {
  std::vector<StyledParagraph> paragraphs(1);
  // Each group keeps its own style and whether its text is skipped; '}' brings the outer one back.
  struct Group {
    TextStyle style;
    bool skipped = false;
  };
  std::vector<Group> groups{Group{}};
  // After \uN the next character (the ANSI fallback) is written instead of N.
  bool fallbackPending = false;
  bool inCell = false;
  const auto emit = [&](char c) {
    if (groups.back().skipped) return;
    std::vector<StyledRun> &runs = paragraphs.back().runs;
    if (runs.empty() || runs.back().style != groups.back().style) runs.push_back({{}, groups.back().style});
    runs.back().text += c;
  };
  const auto endParagraph = [&](bool newPage) {
    if (groups.back().skipped) return;
    paragraphs.emplace_back();
    paragraphs.back().newPage = newPage;
  };
  for (std::size_t i = 0; i < rtf.size(); ++i) {
    const char c = rtf[i];
    if (c == '{') {
      groups.push_back(groups.back());
      // "{\*\name" is a destination a reader may ignore when it does not know it.
      if (rtf.substr(i + 1, 2) == "\\*") groups.back().skipped = true;
    } else if (c == '}') {
      if (groups.size() > 1) groups.pop_back();
    } else if (c == '\\') {
      if (i + 1 >= rtf.size()) break;
      const char next = rtf[i + 1];
      if (next == '\\' || next == '{' || next == '}') {
        emit(next);
        ++i;
      } else if (next == '\'') {
        const int high = i + 2 < rtf.size() ? HexValue(rtf[i + 2]) : -1;
        const int low = i + 3 < rtf.size() ? HexValue(rtf[i + 3]) : -1;
        if (high >= 0 && low >= 0 && !fallbackPending) emit(static_cast<char>(high * 16 + low));
        fallbackPending = false;
        i += 3;
      } else if (std::isalpha(static_cast<unsigned char>(next))) {
        std::size_t end = i + 1;
        while (end < rtf.size() && std::isalpha(static_cast<unsigned char>(rtf[end])))
          ++end;
        const std::string_view word = rtf.substr(i + 1, end - i - 1);
        std::size_t numberEnd = end;
        if (numberEnd < rtf.size() && rtf[numberEnd] == '-') ++numberEnd;
        while (numberEnd < rtf.size() && std::isdigit(static_cast<unsigned char>(rtf[numberEnd])))
          ++numberEnd;
        // One space after a control word belongs to it.
        i = numberEnd < rtf.size() && rtf[numberEnd] == ' ' ? numberEnd : numberEnd - 1;
        const std::string_view number = rtf.substr(end, numberEnd - end);
        if (kSkippedDestinations.count(word) != 0) {
          groups.back().skipped = true;
        } else if (word == "par" || word == "line" || word == "sect" || word == "page") {
          endParagraph(word == "page");
        } else if (word == "b" || word == "i") {
          // "\b" and "\b1" switch on, "\b0" off.
          (word == "b" ? groups.back().style.bold : groups.back().style.italic) = number != "0";
        } else if (word == "fs") {
          const long halfPoints = std::strtol(std::string(number).c_str(), nullptr, 10);
          groups.back().style.halfPoints = halfPoints > 0 ? static_cast<int>(halfPoints) : 24;
        } else if (word == "plain") {
          groups.back().style = TextStyle{};
        } else if (word == "tab") {
          emit('\t');
        } else if (word == "cell") {
          emit(' ');
          emit('|');
          emit(' ');
          inCell = true;
        } else if (word == "row") {
          // The last cell's separator has no cell after it.
          std::vector<StyledRun> &runs = paragraphs.back().runs;
          if (inCell && !runs.empty() && runs.back().text.ends_with(" | ")) {
            runs.back().text.resize(runs.back().text.size() - 3);
            if (runs.back().text.empty()) runs.pop_back();
          }
          endParagraph(false);
          inCell = false;
        } else if (word == "u") {
          // A Latin-1 code point is written as itself and its fallback skipped; any other is left
          // to its fallback character.
          long point = std::strtol(std::string(number).c_str(), nullptr, 10);
          if (point < 0) point += 65536;
          if (point >= 0 && point < 256) {
            emit(static_cast<char>(point));
            fallbackPending = true;
            continue;
          }
        } else if (word == "emdash" || word == "endash") {
          emit('-');
        } else if (word == "bullet") {
          emit('*');
        } else if (word == "lquote" || word == "rquote") {
          emit('\'');
        } else if (word == "ldblquote" || word == "rdblquote") {
          emit('"');
        }
        fallbackPending = false;
      } else {
        // A control symbol such as \~ (no-break space) or \- (optional hyphen).
        if (next == '~') emit(' ');
        ++i;
      }
    } else if (c == '\r' || c == '\n') {
      // Line ends in RTF source are no line ends of the text.
    } else {
      if (fallbackPending) {
        fallbackPending = false;
        continue;
      }
      emit(c);
    }
  }
  // A document ending in \par has no paragraph after it.
  if (paragraphs.size() > 1 && paragraphs.back().runs.empty() && !paragraphs.back().newPage)
    paragraphs.pop_back();
  return paragraphs;
}

std::string RtfToText(std::string_view rtf) {
  const std::vector<StyledParagraph> paragraphs = ParseRtf(rtf);
  std::string text;
  for (std::size_t i = 0; i < paragraphs.size(); ++i) {
    if (i > 0) text += paragraphs[i].newPage ? '\f' : '\n';
    text += paragraphs[i].Text();
  }
  return text;
}

}  // namespace tqv::faxd
