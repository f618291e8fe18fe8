#include "common/string_editors.h"

#include <gtest/gtest.h>

namespace tqv {
namespace {

std::string &SqueezeAroundEquals(std::string &text) {
  return SqueezeAround(text, '=');
}
std::string &SqueezeAroundComma(std::string &text) {
  return SqueezeAround(text, ',');
}

TEST(StringEditors, EditInPlace) {
  const struct {
    std::string &(*edit)(std::string &);
    std::string text;
    std::string expected;
  } cases[] = {
      // Carriage returns are not blanks: they stay.
      {RemoveBlanks, " 1 2\t3\n", "123"},
      {RemoveBlanks, "a\r\nb", "a\rb"},
      {TrimRight, "abc \r\n", "abc"},
      {TrimRight, "\ta b\t\n", "\ta b"},
      {SqueezeAroundEquals, "key \t =\t  value", "key=value"},
      {SqueezeAroundEquals, "a b = c d", "a b=c d"},
      {SqueezeAroundComma, "A = 1 , B", "A = 1,B"},
      {SqueezeAroundEquals, "= =", "=="},
  };
  for (auto c : cases)
    EXPECT_EQ(c.edit(c.text), c.expected) << c.text;
}

TEST(RemoveBlanks, KeepsAtMostTheCapAndBlanksDoNotCount) {
  std::string spaced;
  for (std::size_t i = 0; i < kMaxBlankFreeText; ++i)
    spaced += "x ";
  EXPECT_EQ(RemoveBlanks(spaced), std::string(kMaxBlankFreeText, 'x'));
  std::string tooLong = std::string(kMaxBlankFreeText, 'x') + "yz";
  EXPECT_EQ(RemoveBlanks(tooLong), std::string(kMaxBlankFreeText, 'x'));
}

}  // namespace
}  // namespace tqv
