#include "platform/ini_document.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tqv::platform {
namespace {

using namespace std::string_literals;
using Names = std::vector<std::string_view>;

struct ReadCase {
  std::string text;
  const char *section;
  const char *key;
  std::optional<std::string> expected;
};

TEST(IniDocument, ReadsValuesByTheLineRules) {
  const ReadCase cases[] = {
      {"  [ Some Section ]  junk\n\t Key Name \t=\t two words \t\n", "some section", "KEY NAME", "two words"},
      {"[s]\nk=\"quoted \"\n", "s", "k", "quoted "},
      {"[s]\nk=\"mixed'\n", "s", "k", "\"mixed'"},
      {"[s]\nk=a=b\n", "s", "k", "a=b"},
      {"[s]\nk=first\nK=second\n", "s", "k", "first"},
      {"[s]\nk=first\n[S]\nk=second\nx=only in the duplicate\n", "s", "x", std::nullopt},
      {"[]\nk=empty section name\n", "", "k", "empty section name"},
      {"[s]\n;k=comment\n  ; k=comment\n", "s", "k", std::nullopt},
      {"[s]\n=no name\n  = v\n", "s", "", "no name"},
      {"[s]\n\0k=v\n"s, "s", "k", std::nullopt},
  };
  for (const ReadCase &c : cases) {
    const IniDocument document(c.text);
    const std::optional<std::string_view> value = document.Value(c.section, c.key);
    EXPECT_EQ(value ? std::optional<std::string>(*value) : std::nullopt, c.expected)
        << "file: " << ::testing::PrintToString(c.text) << " [" << c.section << "] " << c.key;
  }
}

TEST(IniDocument, ListsWhatAReaderSeesInFileOrder) {
  const IniDocument document(
      "orphan=1\n[Users]\nzeta=1\n; alpha=0\nAlpha=2\nZETA=3\n=4\n mid =5\n"
      "[Other]\n[users]\nlate=6\n[OTHER]\n");
  EXPECT_EQ(document.SectionNames(), (Names{"Users", "Other"}));
  EXPECT_EQ(document.KeyNames("USERS"), (Names{"zeta", "Alpha", "", "mid"}));
  EXPECT_EQ(document.KeyNames("other"), Names{});
}

struct EditCase {
  const char *what;
  std::string before;
  std::string after;
};

TEST(IniDocument, SetValueEditsOnlyItsLine) {
  const EditCase cases[] = {
      {"replaces the first key line, spelled as in the file",
       "; top\n[Sec]\n  MyKey = old ; not a comment\nmykey=dup\nodd line\n",
       "; top\r\n[Sec]\r\nMyKey=new\r\nmykey=dup\r\nodd line\r\n"},
      {"appends right after the header of a section without keys", "[sec]\n; note\n\n[next]\n",
       "[sec]\r\nmykey=new\r\n; note\r\n\r\n[next]\r\n"},
      {"edits only the first of duplicate sections", "[sec]\na=1\n[SEC]\nmykey=2\n",
       "[sec]\r\na=1\r\nmykey=new\r\n[SEC]\r\nmykey=2\r\n"},
      {"keeps a blank line where it was", "[other]\nx=1\n\n", "[other]\r\nx=1\r\n\r\n[SEC]\r\nmykey=new\r\n"},
      {"ignores keys before any section", "mykey=old\n", "mykey=old\r\n[SEC]\r\nmykey=new\r\n"},
      {"keeps binary lines byte for byte", "\x01\xff[\0\r\n[sec]\nmykey=1\n"s,
       "\x01\xff[\0\r\n[sec]\r\nmykey=new\r\n"s},
  };
  for (const EditCase &c : cases) {
    IniDocument document(c.before);
    EXPECT_TRUE(document.SetValue("SEC", "mykey", "new")) << c.what;
    EXPECT_EQ(document.Serialize(), c.after) << c.what;
    EXPECT_EQ(document.Value("sec", "MYKEY"), "new") << c.what;
  }
}

TEST(IniDocument, SetValueRefusesWhatCouldNotBeReadBack) {
  IniDocument document("[s]\nk=v\n");
  EXPECT_FALSE(document.SetValue("s", "", "x"));
  EXPECT_FALSE(document.SetValue("s", "a=b", "x"));
  EXPECT_FALSE(document.SetValue("s", ";x", "x"));
  EXPECT_FALSE(document.SetValue("a\nb", "k", "x"));
  EXPECT_FALSE(document.SetValue("s", "k\r[evil]", "x"));

  // A value ends at its first line break, which could not be read back either.
  EXPECT_TRUE(document.SetValue(" s ", " k ", "one\r\n[evil]\nx=1"));
  EXPECT_EQ(document.Serialize(), "[s]\r\nk=one\r\n");
}

}  // namespace
}  // namespace tqv::platform
