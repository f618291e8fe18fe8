// Path mapping of the POSIX backend. Pure string work; it cannot fail.
#include "platform/posix/native_path.h"
#include "platform/posix/process_id.h"

#include <unistd.h>

#include <atomic>
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

std::string TemporaryNameBeside(const std::string &nativeTarget, std::string_view tag) {
  static std::atomic<unsigned> counter{0};
  const std::size_t cut = nativeTarget.find_last_of('/');
  const std::string directory = cut == std::string::npos ? std::string() : nativeTarget.substr(0, cut + 1);
  return directory + ".tqv" + std::string(tag) + "." + std::to_string(CurrentProcessId()) + "." +
         std::to_string(counter++);
}

}  // namespace tqv::platform
