#include "outgoing/body_splitting.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include "platform/fault_injection.h"
#include "platform/file.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

using namespace std::string_literals;

class BodySplitting : public testing::TempDirTest {
 protected:
  int Split(std::string_view body) {
    WriteFile(PathOf("body"), body);
    return SplitBody(PathOf("body"), PathOf("setup"), PathOf("text"));
  }
  // The file's bytes, or "-" when there is no file.
  std::string Contents(std::string_view name) const {
    return Exists(PathOf(name)) ? ReadFile(PathOf(name)) : "-";
  }
};

TEST_F(BodySplitting, OptionLinesStartAfterCarriageReturnAndLineFeed) {
  const std::string line253 = "::" + std::string(249, 'x') + "\r\n";
  const std::string line300 = "::" + std::string(296, 'x') + "\r\n";
  struct Case {
    std::string body, setup, text;
  };
  const Case cases[] = {
      {"::s\r\nHello\r\n", "::s\r\n", "Hello\r\n"},
      {"Hi\r\n::h\r\n::C=x\r\nBye", "::h\r\n::C=x\r\n", "Hi\r\nBye"},
      // Without CR no line starts after the first, so a first option line runs to the end.
      {"Hello\n::s\n", "-", "Hello\n::s\n"},
      {"::s\nHello\n", "::s\nHello\n", "-"},
      {":x\r\n ::s\r\n::", "::", ":x\r\n ::s\r\n"},
      {"Hi\r\n:", "-", "Hi\r\n"},
      {"x\0\0::h"s, "::h", "x\0\0"s},
      {line253 + "Text", line253, "Text"},
      {line300 + "Text", "-", line300 + "Text"},
      {"::h\r\n::1\r\n", "::h\r\n::1\r\n", "-"},
      {"\r\n \t\r\n", "-", "-"},
  };
  for (const Case &c : cases) {
    EXPECT_EQ(Split(c.body), 0) << c.body;
    EXPECT_EQ(Contents("setup"), c.setup) << c.body;
    EXPECT_EQ(Contents("text"), c.text) << c.body;
    EXPECT_TRUE(Exists(PathOf("body")));
    std::filesystem::remove(PathOf("setup"));
    std::filesystem::remove(PathOf("text"));
  }
}

TEST_F(BodySplitting, AFileThatCannotBeOpenedEndsTheSplitAndDeletesWhatWasOpened) {
  // The second and third operations create the setup and the message-text file.
  for (const std::uint64_t failing : {2, 3}) {
    WriteFile(PathOf("body"), "::h\r\nHello");
    platform::FailFileOperations(failing);
    EXPECT_EQ(SplitBody(PathOf("body"), PathOf("setup"), PathOf("text")), -1);
    EXPECT_EQ(Contents("body") + Contents("setup") + Contents("text"), "---") << failing;
  }
  // A body its writer still holds is not opened, so it stays.
  WriteFile(PathOf("body"), "Hello");
  {
    const std::optional<platform::File> held = platform::File::OpenExclusive(PathOf("body"));
    EXPECT_EQ(SplitBody(PathOf("body"), PathOf("setup"), PathOf("text")), -1);
  }
  EXPECT_EQ(Contents("body") + Contents("setup") + Contents("text"), "Hello--");
}

}  // namespace
}  // namespace tqv
