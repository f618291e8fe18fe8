// Dispatch by document kind. Each renderer reports its own failure; this adds which kind the
// document was, so the reason in the delivery report names it.
#include "faxd/document_renderer.h"

#include <fstream>
#include <iterator>

#include "faxd/document_kind.h"
#include "faxd/ghostscript_renderer.h"
#include "faxd/rtf_subset.h"
#include "faxd/styled_page.h"
#include "faxd/text_page.h"
#include "faxd/tiff_document.h"

namespace tqv::faxd {

namespace {

// Documents larger than this are no text anyone faxes.
constexpr std::size_t kMaxTextBytes = 4 * 1024 * 1024;

// Reads one byte past the limit at most, so a huge file is refused without being read whole.
bool ReadSmallFile(const std::string &path, std::string &bytes) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  bytes.resize(kMaxTextBytes + 1);
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(in.gcount()));
  return bytes.size() <= kMaxTextBytes;
}

}  // namespace

bool RenderDocument(const std::string &path, const RenderContext &context, std::vector<PageImage> &pages,
                    std::string &error) {
  const DocumentKind kind = KindOfFile(path);
  std::string why;
  bool rendered = false;
  std::string bytes;
  switch (kind) {
    case DocumentKind::Unreadable:
      error = "cannot be read";
      return false;
    case DocumentKind::Other:
      error = "is of a kind that cannot be faxed (not TIFF, PDF, PostScript, RTF or text)";
      return false;
    case DocumentKind::Tiff:
      rendered = RenderTiffDocument(path, context, pages, why);
      break;
    case DocumentKind::Pdf:
    case DocumentKind::PostScript:
      rendered = RenderWithGhostscript(path, context, pages, why);
      break;
    case DocumentKind::Text:
    case DocumentKind::Rtf:
      if (!ReadSmallFile(path, bytes)) {
        why = "it cannot be read or is larger than 4 MiB";
        break;
      }
      rendered = kind == DocumentKind::Rtf ? RenderStyled(ParseRtf(bytes), context, pages, why)
                                           : RenderText(bytes, context, pages, why);
      break;
  }
  if (!rendered) error = "is a " + std::string(KindName(kind)) + " document that cannot be rendered: " + why;
  return rendered;
}

}  // namespace tqv::faxd
