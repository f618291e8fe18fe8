// RTF to text: one pass over the groups with a stack of "skipped" flags, so a destination that is
// left out takes everything nested inside it along.
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

std::string RtfToText(std::string_view rtf) {
  std::string text;
  std::vector<bool> skipped{false};
  // After \uN the next character (the ANSI fallback) is written instead of N.
  bool fallbackPending = false;
  bool inCell = false;
  const auto emit = [&](char c) {
    if (!skipped.back()) text += c;
  };
  for (std::size_t i = 0; i < rtf.size(); ++i) {
    const char c = rtf[i];
    if (c == '{') {
      skipped.push_back(skipped.back());
      // "{\*\name" is a destination a reader may ignore when it does not know it.
      if (rtf.substr(i + 1, 2) == "\\*") skipped.back() = true;
    } else if (c == '}') {
      if (skipped.size() > 1) skipped.pop_back();
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
        if (kSkippedDestinations.count(word) != 0) {
          skipped.back() = true;
        } else if (word == "par" || word == "line" || word == "sect" || word == "page") {
          emit(word == "page" ? '\f' : '\n');
        } else if (word == "tab") {
          emit('\t');
        } else if (word == "cell") {
          emit(' ');
          emit('|');
          emit(' ');
          inCell = true;
        } else if (word == "row") {
          // The last cell's separator has no cell after it.
          if (inCell && text.size() >= 3 && text.ends_with(" | ")) text.resize(text.size() - 3);
          emit('\n');
          inCell = false;
        } else if (word == "u") {
          // A Latin-1 code point is written as itself and its fallback skipped; any other is left
          // to its fallback character.
          long point = std::strtol(std::string(rtf.substr(end, numberEnd - end)).c_str(), nullptr, 10);
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
  return text;
}

}  // namespace tqv::faxd
