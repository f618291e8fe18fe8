// JSON strings from record texts: every byte must come out as valid, escaped UTF-8.
#include "tqv/shared/json_writer.h"

#include <gtest/gtest.h>

namespace tqv::tool {
namespace {

TEST(JsonString, EscapesWhatJsonRequiresAndTakesHighBytesAsWindows1252) {
  const struct {
    std::string_view text;
    std::string_view json;
  } cases[] = {
      {"say \"hi\"", "\"say \\\"hi\\\"\""},
      {"C:\\GW\\OUT", "\"C:\\\\GW\\\\OUT\""},
      {"a\r\nb\tc/d", "\"a\\r\\nb\\tc/d\""},
      {std::string_view("\x01\x1F\0", 3), "\"\\u0001\\u001f\\u0000\""},
      {"\xE9\xFF", "\"\u00e9\u00ff\""},
      {"\x80\x9F", "\"\u20ac\u0178\""},  // the block where Windows-1252 differs from Latin-1
      {"\x81", "\"\\u0081\""},           // unassigned: shown, not hidden
  };
  for (const auto &c : cases)
    EXPECT_EQ(JsonString(c.text), c.json) << c.text;
}

}  // namespace
}  // namespace tqv::tool
