// Document kinds by signature. A PDF may carry a few bytes of junk before "%PDF-", as readers
// accept, so the signature is looked for in the first kilobyte.
#include "faxd/document_kind.h"

#include <fstream>

namespace tqv::faxd {

std::string_view KindName(DocumentKind kind) {
  switch (kind) {
    case DocumentKind::Tiff:
      return "TIFF";
    case DocumentKind::Pdf:
      return "PDF";
    case DocumentKind::PostScript:
      return "PostScript";
    case DocumentKind::Rtf:
      return "RTF";
    case DocumentKind::Text:
      return "text";
    case DocumentKind::Other:
      return "unknown";
    case DocumentKind::Unreadable:
      break;
  }
  return "unreadable";
}

DocumentKind KindOfBytes(std::string_view head) {
  if (head.starts_with("II*\0") || head.starts_with("MM\0*")) return DocumentKind::Tiff;
  if (head.substr(0, 1024).find("%PDF-") != std::string_view::npos) return DocumentKind::Pdf;
  if (head.starts_with("%!") || head.starts_with("\x04%!")) return DocumentKind::PostScript;
  if (head.starts_with("{\\rtf")) return DocumentKind::Rtf;
  std::size_t controls = 0;
  for (unsigned char c : head) {
    if (c == 0) return DocumentKind::Other;
    if ((c < 0x20 && c != '\t' && c != '\r' && c != '\n' && c != '\f') || c == 0x7F) ++controls;
  }
  return controls * 20 <= head.size() ? DocumentKind::Text : DocumentKind::Other;
}

DocumentKind KindOfFile(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return DocumentKind::Unreadable;
  std::string head(4096, '\0');
  in.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(in.gcount()));
  return KindOfBytes(head);
}

}  // namespace tqv::faxd
