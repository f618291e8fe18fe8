// Recognises document formats by their first bytes or by their name. A file that cannot be opened
// (missing, or held by another process) or is too short is taken as not of the format.
#pragma once

#include <string_view>

namespace tqv {

// The file begins with the little-endian TIFF mark "II" ("MM" files do not count).
bool IsTiffFile(std::string_view path);

// The file begins with exactly "<StartFax>" (case matters).
bool IsStartFaxFile(std::string_view path);

// The name ends in ".RTF" in any case; the file is not opened.
bool IsRtfFile(std::string_view name);

}  // namespace tqv
