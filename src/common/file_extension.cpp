// Extensions for the files the system names itself. Cannot fail: an unusable extension becomes
// the fallback, "FAX" unless the caller names another.
#include "common/file_extension.h"

#include <algorithm>

namespace tqv {

std::string ExtensionOf(std::string_view name, std::string_view fallback) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos) return std::string(fallback);
  return std::string(name.substr(dot + 1));
}

std::string SafeExtensionOf(std::string_view untrustedName, std::string_view fallback) {
  std::string extension = ExtensionOf(untrustedName, fallback);
  // No "." can be left in it, so ".." cannot occur; separators, colons and wildcards can.
  const bool unsafe = std::any_of(extension.begin(), extension.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F || std::string_view("\\/:*?\"<>|").find(c) != std::string_view::npos;
  });
  return unsafe ? std::string(fallback) : extension;
}

bool CouldBeJobFileExtension(std::string_view extension) {
  std::string letters;
  for (const char c : extension) {
    if (c == ' ') continue;
    letters.push_back(c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c);
    if (letters.size() == kJobFileExtension.size()) break;
  }
  return letters == kJobFileExtension;
}

std::string DocumentCopyExtension(std::string_view extension) {
  std::string_view bare = extension;
  if (bare.starts_with('.')) bare.remove_prefix(1);
  return CouldBeJobFileExtension(bare) ? std::string(kDefaultExtension) : std::string(extension);
}

}  // namespace tqv
