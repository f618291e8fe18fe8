// Format recognition by leading bytes or by name. Files are opened without sharing, so a file
// still being written is not recognised; every failure answers "not of this format".
#include "common/format_sniffers.h"

#include <string>

#include "platform/file.h"

namespace tqv {

namespace {

bool BeginsWith(std::string_view path, std::string_view mark) {
  auto file = platform::File::OpenExclusive(path);
  if (!file) return false;
  const auto head = file->ReadAll(mark.size());
  return head.has_value() && *head == mark;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const auto upperA = (a[i] >= 'a' && a[i] <= 'z') ? a[i] - 'a' + 'A' : a[i];
    const auto upperB = (b[i] >= 'a' && b[i] <= 'z') ? b[i] - 'a' + 'A' : b[i];
    if (upperA != upperB) return false;
  }
  return true;
}

}  // namespace

bool IsTiffFile(std::string_view path) {
  return BeginsWith(path, "II");
}

bool IsStartFaxFile(std::string_view path) {
  return BeginsWith(path, "<StartFax>");
}

bool IsRtfFile(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return dot != std::string_view::npos && EqualsIgnoringCase(name.substr(dot), ".RTF");
}

}  // namespace tqv
