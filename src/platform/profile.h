// The Windows profile (INI file) functions: GetPrivateProfileString, GetPrivateProfileInt and
// WritePrivateProfileString with their rules. A file named without a directory lives in the
// Windows directory; a name nothing has finds a file spelled the same but for letter case. Missing
// files read as empty; failed writes leave the file as it was.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tqv::platform {

// What GetPrivateProfileString leaves in a buffer of `size` bytes, without the terminating NUL:
// - section and key given: the value (one pair of surrounding quotes removed), or the default
//   when the key is missing, cut to size-1 characters;
// - no key: the key names of the section in file order, each followed by a NUL; when they do
//   not fit, cut to size-2 characters (the buffer then ends with two NULs);
// - no section: the section names, likewise.
// The length of the result is what the Windows function returns. Size 0 gives "".
std::string ProfileReadString(std::optional<std::string_view> section, std::optional<std::string_view> key,
                              std::string_view defaultValue, std::size_t size, std::string_view file);

// The value, or nullopt when the key is missing: tells a missing key from an empty value.
std::optional<std::string> ProfileLookup(std::string_view section, std::string_view key,
                                         std::string_view file);

// GetPrivateProfileInt: leading blanks, an optional sign and decimal digits up to the first other
// character; a value without digits gives 0; a missing key or an empty value gives the default.
std::int32_t ProfileReadInt(std::string_view section, std::string_view key, std::int32_t defaultValue,
                            std::string_view file);

// WritePrivateProfileString: sets the key (appending it after the last key of its section, or a
// new section after the last line, creating the file as needed); no value removes the key; no key
// removes the whole section. Every other line of the file is kept. False when the file cannot be
// written.
bool ProfileWriteString(std::string_view section, std::optional<std::string_view> key,
                        std::optional<std::string_view> value, std::string_view file);

// While one is alive, a file already read during it is taken to be as it was then, with this
// process's own writes applied: the library holds one for each call of an entry point, so a call
// looks at each settings file once instead of once per value, and sees a file changed by another
// process from its next call on. Scopes nest. Where the system keeps the files (Windows), it does
// nothing.
class ProfileCallScope {
 public:
  ProfileCallScope();
  ~ProfileCallScope();
  ProfileCallScope(const ProfileCallScope &) = delete;
  ProfileCallScope &operator=(const ProfileCallScope &) = delete;
};

}  // namespace tqv::platform
