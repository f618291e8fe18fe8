// The RTF subset the fax service draws: paragraphs (\par, \line), tabs, table cells and rows as
// text (cells joined by " | ", a row per line), escaped and hex characters (\'hh, \{ \} \\), and
// \uN as its Latin-1 character or else its fallback. Fonts, colours, pictures, headers and other destinations
// are left out; bold, italic and sizes come out as plain text. It never fails: what it cannot read it skips.
#pragma once

#include <string>
#include <string_view>

namespace tqv::faxd {

std::string RtfToText(std::string_view rtf);

}  // namespace tqv::faxd
