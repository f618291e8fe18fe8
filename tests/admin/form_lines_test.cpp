#include "admin/form_lines.h"

#include <gtest/gtest.h>

#include <string>

#include "support/temp_dir.h"

namespace tqv {
namespace {

using FormLines = testing::TempDirTest;

TEST_F(FormLines, SkipBlanksAndCommentsAndComeInPiecesOf510) {
  WriteFile(PathOf("form.txt"), "\r\n \t \r\n;; note\r\n  X : 1 \t\r\n" + std::string(600, 'a') + "\r\nlast");
  std::optional<TextLines> lines = TextLines::Open(PathOf("form.txt"));
  ASSERT_TRUE(lines);
  EXPECT_EQ(NextFormLine(*lines, kFormLineSize), "  X : 1");
  EXPECT_EQ(NextFormLine(*lines, kFormLineSize), std::string(510, 'a'));
  EXPECT_EQ(NextFormLine(*lines, kFormLineSize), std::string(90, 'a'));
  EXPECT_EQ(NextFormLine(*lines, kFormLineSize), "last");
  EXPECT_EQ(NextFormLine(*lines, kFormLineSize), std::nullopt);
}

}  // namespace
}  // namespace tqv
