// What kind of document a file is, told by its first bytes (its name only breaks a tie for text).
// Reading fails only as "unreadable".
#pragma once

#include <string>
#include <string_view>

namespace tqv::faxd {

enum class DocumentKind { Unreadable, Tiff, Pdf, PostScript, Rtf, Text, Other };

// A kind's name for messages: "TIFF", "PDF", ...
std::string_view KindName(DocumentKind kind);

// From the first bytes of a file: TIFF and PDF and PostScript and RTF by their signatures, text when
// there is no NUL and at most one byte in 20 is a control character other than tab, CR, LF or FF.
DocumentKind KindOfBytes(std::string_view head);

// KindOfBytes of the file's first 4 KiB; Unreadable when it cannot be opened.
DocumentKind KindOfFile(const std::string &path);

}  // namespace tqv::faxd
