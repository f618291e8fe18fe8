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
  std::string spaced;
  for (std::size_t i = 0; i < kMaxBlankFreeText; ++i)
    spaced += "x ";
  const std::string capped(kMaxBlankFreeText, 'x');
  const struct {
    std::string &(*edit)(std::string &);
    std::string text;
    std::string expected;
  } cases[] = {
      // Carriage returns are not blanks: they stay.
      {RemoveBlanks, " 1 2\t3\n", "123"},
      {RemoveBlanks, "a\r\nb", "a\rb"},
      {RemoveBlanks, spaced, capped},  // blanks do not count towards the cap
      {RemoveBlanks, capped + "yz", capped},
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

}  // namespace
}  // namespace tqv
