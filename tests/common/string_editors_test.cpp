#include "common/string_editors.h"

#include <gtest/gtest.h>

namespace tqv {
namespace {

struct EditCase {
  std::string text;
  std::string expected;
};

TEST(RemoveBlanks, RemovesSpacesTabsAndLineFeedsButNotCarriageReturns) {
  const EditCase cases[] = {{" 1 2\t3\n", "123"}, {"a\r\nb", "a\rb"}, {" \t\n", ""}};
  for (auto [text, expected] : cases)
    EXPECT_EQ(RemoveBlanks(text), expected);
}

TEST(RemoveBlanks, KeepsAtMostTheCapAndBlanksDoNotCount) {
  std::string spaced;
  for (std::size_t i = 0; i < kMaxBlankFreeText; ++i)
    spaced += "x ";
  EXPECT_EQ(RemoveBlanks(spaced), std::string(kMaxBlankFreeText, 'x'));
  std::string tooLong = std::string(kMaxBlankFreeText, 'x') + "yz";
  EXPECT_EQ(RemoveBlanks(tooLong), std::string(kMaxBlankFreeText, 'x'));
}

TEST(TrimRight, RemovesOnlyTrailingWhitespace) {
  const EditCase cases[] = {{"abc \r\n", "abc"}, {" \t", ""}, {"", ""}, {"\ta b\t\n", "\ta b"}};
  for (auto [text, expected] : cases)
    EXPECT_EQ(TrimRight(text), expected);
}

TEST(SqueezeAround, RemovesBlankRunsBesideTheSeparatorOnly) {
  std::string line = "A = 1 , B";
  EXPECT_EQ(SqueezeAround(line, '='), "A=1 , B");
  EXPECT_EQ(SqueezeAround(line, ','), "A=1,B");

  const EditCase cases[] = {{"key \t =\t  value", "key=value"},
                            {" =x", "=x"},
                            {"x= ", "x="},
                            {"a b = c d", "a b=c d"},
                            {"= =", "=="}};
  for (auto [text, expected] : cases)
    EXPECT_EQ(SqueezeAround(text, '='), expected);
}

}  // namespace
}  // namespace tqv
