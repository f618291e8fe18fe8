#include <gtest/gtest.h>

#include <cstdlib>

#if !defined(_WIN32)
#include "platform/posix/native_path.h"
#endif
#include "platform/text_mode.h"
#include "platform/wildcard_match.h"

namespace tqv::platform {
namespace {

// The mapping to POSIX paths exists only in the POSIX backend.
#if !defined(_WIN32)
TEST(NativePath, BackslashesAndDrivePrefixes) {
  setenv("TQVSPOOL_DRIVE_C", "/srv/fax", 1);
  setenv("TQVSPOOL_DRIVE_D", "/data/", 1);
  unsetenv("TQVSPOOL_DRIVE_E");
  const std::pair<const char *, const char *> cases[] = {{"C:\\GW\\OUT", "/srv/fax/GW/OUT"},
                                                         {"c:\\GW\\OUT\\", "/srv/fax/GW/OUT/"},
                                                         {"E:\\tmp\\a.txt", "/tmp/a.txt"},
                                                         {"/already/native", "/already/native"},
                                                         {"relative\\name.txt", "relative/name.txt"}};
  for (const auto &[windows, native] : cases)
    EXPECT_EQ(ToNativePath(windows), native) << windows;
  unsetenv("TQVSPOOL_DRIVE_C");
  unsetenv("TQVSPOOL_DRIVE_D");
}
#endif

TEST(WildcardMatch, WindowsPatterns) {
  const struct {
    const char *name;
    const char *pattern;
    bool matches;
  } cases[] = {{"a.tqv", "*.TQV", true},   {"a.tqvx", "*.TQV", false},
               {"README", "*.*", true},    {".", "*.*", true},
               {"ab.txt", "a?c.*", false}, {"REPORT", "REPORT.*", true},
               {"name", "*.", true},       {"aaaaaaaaaaaaaaaaaaaab", "*a*a*a*a*a*a*c", false}};
  for (const auto &c : cases)
    EXPECT_EQ(MatchesWildcard(c.name, c.pattern), c.matches) << c.name << " ~ " << c.pattern;
}

TEST(TextMode, LineEndsAsTheWindowsRuntimeWritesAndReadsThem) {
  EXPECT_EQ(ToTextMode("a\nb\n"), "a\r\nb\r\n");
  EXPECT_EQ(ToTextMode("a\r\n"), "a\r\r\n");
  EXPECT_EQ(FromTextMode("a\r\nb\rc\n"), "a\nb\rc\n");
}

}  // namespace
}  // namespace tqv::platform
