// Path mapping of the POSIX backend. Pure string work; it cannot fail.
#include "platform/posix/native_path.h"

#include <cctype>
#include <cstdlib>

namespace tqv::platform {

std::string ToNativePath(std::string_view windowsPath) {
  std::string result;
  std::string_view rest = windowsPath;
  if (rest.size() >= 2 && rest[1] == ':' && std::isalpha(static_cast<unsigned char>(rest[0]))) {
    const std::string variable =
        std::string("TQVSPOOL_DRIVE_") + static_cast<char>(std::toupper(static_cast<unsigned char>(rest[0])));
    if (const char *root = std::getenv(variable.c_str())) {
      result = root;
      // Avoid "root//dir" when both the root and the rest bring a separator.
      if (!result.empty() && result.back() == '/' && rest.size() > 2 && (rest[2] == '\\' || rest[2] == '/')) {
        result.pop_back();
      }
    }
    rest.remove_prefix(2);
  }
  result.reserve(result.size() + rest.size());
  for (char c : rest)
    result.push_back(c == '\\' ? '/' : c);
  return result;
}

}  // namespace tqv::platform
