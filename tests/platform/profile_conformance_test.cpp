// The profile functions against what Windows is documented and known to do with the same file: one
// table per rule, each row the file, the call and what comes back or what the file holds after.
#include <optional>
#include <string>
#include <vector>

#include "platform/profile.h"
#include "support/platform_backend.h"
#include "support/temp_dir.h"

namespace tqv::platform {
namespace {

using namespace std::string_literals;

// Under Wine the system's own functions answer, which depart from Windows in places these rows pin.
constexpr const char *kOurEngineOnly = "the table is of our engine; Wine's answers differ";

struct ReadRow {
  std::string file;
  std::optional<std::string> section;  // none: list the sections
  std::optional<std::string> key;      // none: list the keys
  std::string expected;
  std::string defaultValue = "default";
};

struct WriteRow {
  std::string before;
  std::string section;
  std::optional<std::string> key;    // none: remove the section
  std::optional<std::string> value;  // none: remove the key
  std::string after;
};

class ProfileConformance : public tqv::testing::TempDirTest {
 protected:
  // Each row gets a file of its own: rows written to one name within one clock tick could
  // otherwise share a cache stamp.
  std::string RowFile(std::size_t row) const { return PathOf("row" + std::to_string(row) + ".ini"); }

  void CheckReads(const std::vector<ReadRow> &rows) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const ReadRow &row = rows[i];
      WriteFile(RowFile(i), row.file);
      const std::optional<std::string_view> key =
          row.key ? std::optional<std::string_view>(*row.key) : std::nullopt;
      const std::optional<std::string_view> section =
          row.section ? std::optional<std::string_view>(*row.section) : std::nullopt;
      EXPECT_EQ(ProfileReadString(section, key, row.defaultValue, 256, RowFile(i)), row.expected)
          << "file " << ::testing::PrintToString(row.file) << " [" << row.section.value_or("(all)") << "] "
          << row.key.value_or("(all)");
    }
  }

  void CheckWrites(const std::vector<WriteRow> &rows) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const WriteRow &row = rows[i];
      WriteFile(RowFile(i), row.before);
      const std::optional<std::string_view> key =
          row.key ? std::optional<std::string_view>(*row.key) : std::nullopt;
      const std::optional<std::string_view> value =
          row.value ? std::optional<std::string_view>(*row.value) : std::nullopt;
      EXPECT_TRUE(ProfileWriteString(row.section, key, value, RowFile(i)));
      EXPECT_EQ(ReadFile(RowFile(i)), row.after) << "file " << ::testing::PrintToString(row.before);
      if (key) {
        EXPECT_EQ(ProfileLookup(row.section, *key, RowFile(i)), row.value) << *key;
      }
    }
  }
};

// Line ends. A reader that splits at CR, at LF and at CR LF sees the lines Notepad shows; a file
// from an old Mac or a tool that writes CR alone is as many lines as it shows.
TEST_F(ProfileConformance, CrAloneLfAloneAndCrLfEachEndALine) {
  TQV_SKIP_ON_WIN32(kOurEngineOnly);
  CheckReads({
      {"[a]\rk=1\r[b]\rk=2\r", "b", "k", "2"},
      {"[a]\rk=1\r[b]\rk=2", "A", "K", "1"},
      {"[a]\r\nk=1\n[b]\rk=2\n", "b", "k", "2"},
      {"[a]\nk=1\r\r\nj=2\n", "a", "j", "2"},  // CR, then CR LF: a blank line between
      {"[a]\rk=1\r[b]\rk=2\r", std::nullopt, std::nullopt, "a\0b\0"s},
  });
  // A write to such a file lands in its section; every line then ends with CR LF.
  CheckWrites({
      {"[a]\rk=1\r[b]\rj=2\r", "a", "n", "3", "[a]\r\nk=1\r\nn=3\r\n[b]\r\nj=2\r\n"},
      {"[a]\rk=1\r[b]\rj=2", "b", "j", "4", "[a]\r\nk=1\r\n[b]\r\nj=4\r\n"},
  });
}

// Names (GetPrivateProfileString and WritePrivateProfileString, Microsoft Learn: section and key
// names are case-independent). A header runs from its '[' to the last ']' of its line; text after
// that is ignored. A line holding '=' is a key even when nothing stands before the '='.
TEST_F(ProfileConformance, SectionAndKeyNames) {
  TQV_SKIP_ON_WIN32(kOurEngineOnly);
  CheckReads({
      {"[Some Section]\nSome Key=v\n", "sOME sECTION", "SOME KEY", "v"},
      {"  [ padded ]  \n\t key \t= v\n", "padded", "key", "v"},
      {"[a]b]\nk=v\n", "a]b", "k", "v"},
      {"[a]b]\nk=v\n", "a", "k", "default"},
      {"[a] trailing text\nk=v\n", "a", "k", "v"},
      {"[a\nk=v\n", "a", "k", "v"},  // no ']': the name runs to the line end
      {"[s]\n=empty name\nk=v\n", "s", "", "empty name"},
      {"[s]\n=empty name\nk=v\n", "s", std::nullopt, "\0k\0"s},
      {"[s]\nk=first\nK=second\n", "s", "k", "first"},
      {"[s]\nk=first\n[S]\nk=second\nx=only in the duplicate\n", "s", "x", "default"},
      {"[]\nk=v\n", "", "k", "v"},
      {"k=before any section\n[s]\n", "s", "k", "default"},
      {"[s]\n\0k=v\n"s, "s", "k", "default"},
      // Listings: in file order, a duplicate section and its keys left out, an empty name kept.
      {"orphan=1\n[Users]\nzeta=1\n; alpha=0\nAlpha=2\nZETA=3\n=4\n mid "
       "=5\n[Other]\n[users]\nlate=6\n[OTHER]\n",
       std::nullopt, std::nullopt, "Users\0Other\0"s},
      {"[Users]\nzeta=1\n; alpha=0\nAlpha=2\nZETA=3\n=4\n mid =5\n[users]\nlate=6\n", "USERS", std::nullopt,
       "zeta\0Alpha\0\0mid\0"s},
      {"[Other]\n[users]\nlate=6\n", "other", std::nullopt, ""},
  });
  CheckWrites({
      {"[s]\nk=1\n", "a]b", "k", "v", "[s]\r\nk=1\r\n[a]b]\r\nk=v\r\n"},
  });
}

// Values (Microsoft Knowledge Base Q69752: one pair of surrounding quotes is removed, so quotes
// keep blanks; doubled quotes leave one pair). Blanks around a value go; a ';' after a value is
// part of it, since only a line starting with ';' is a comment.
TEST_F(ProfileConformance, Values) {
  TQV_SKIP_ON_WIN32(kOurEngineOnly);
  CheckReads({
      {"[s]\nk =  string  \n", "s", "k", "string"},
      {"[s]\nk=' string'\n", "s", "k", " string"},
      {"[s]\nk=\" string\"\n", "s", "k", " string"},
      {"[s]\nk=''string''\n", "s", "k", "'string'"},
      {"[s]\nk=\"string'\n", "s", "k", "\"string'"},
      {"[s]\nk=diet ;gag\n", "s", "k", "diet ;gag"},
      {"[s]\n;k=commented\n  ; k=commented\n", "s", "k", "default"},
      {"[s]\nk=a=b\n", "s", "k", "a=b"},
  });
}

// Writes (WritePrivateProfileString, Microsoft Learn: a missing section or key is created, no
// value deletes the key, no key deletes the section). The bytes are those Windows writes for the
// same call from the same file: a new section follows the last line with no blank line before it,
// a new key follows the last key of its section, and no other line is added, dropped or moved.
// Where a rewritten file's line ends could be read either way, every line ends with CR LF, as
// Windows ends the lines of a file it rewrote.
TEST_F(ProfileConformance, WritesChangeOnlyTheirLine) {
  TQV_SKIP_ON_WIN32(kOurEngineOnly);
  CheckWrites({
      {"[a]\r\nk=1\r\n", "b", "j", "2", "[a]\r\nk=1\r\n[b]\r\nj=2\r\n"},
      {"[a]\r\nk=1", "b", "j", "2", "[a]\r\nk=1\r\n[b]\r\nj=2\r\n"},
      {"[a]\r\nk=1", "a", "j", "2", "[a]\r\nk=1\r\nj=2\r\n"},
      {"", "b", "j", "2", "[b]\r\nj=2\r\n"},
      {"[a]\r\nk=1\r\n\r\n; end\r\n", "b", "j", "2", "[a]\r\nk=1\r\n\r\n; end\r\n[b]\r\nj=2\r\n"},
      {"[a]\r\n  K = old ; x\r\nz=9\r\n", "A", "k", "new", "[a]\r\nK=new\r\nz=9\r\n"},
      {"; top\n[a]\nk=1\nj=\"2\"\n\n; tail\n[b]\n", "a", "n", "3",
       "; top\r\n[a]\r\nk=1\r\nj=\"2\"\r\nn=3\r\n\r\n; tail\r\n[b]\r\n"},
      {"[a]\r\nk=1\r\nj=2\r\n[b]\r\nk=3\r\n", "a", "k", std::nullopt, "[a]\r\nj=2\r\n[b]\r\nk=3\r\n"},
      // A removal takes every line of the key; with nothing to remove the file is not rewritten.
      {"[a]\nk=1\n;note\nK=dup\nj=2\n", "A", "k", std::nullopt, "[a]\r\n;note\r\nj=2\r\n"},
      {"[a]\nj=2\n", "a", "missing", std::nullopt, "[a]\nj=2\n"},
      {"[a]\r\nk=1\r\n[b]\r\nk=3\r\n[c]\r\n", "b", std::nullopt, std::nullopt, "[a]\r\nk=1\r\n[c]\r\n"},
      {"[a]\nk=1\nK=dup\n", "a", "K", "new", "[a]\r\nk=new\r\nK=dup\r\n"},
      {"[a]\n; note\n\n[b]\n", "A", "k", "new", "[a]\r\nk=new\r\n; note\r\n\r\n[b]\r\n"},
      {"[a]\nj=1\n[A]\nk=2\n", "a", "k", "new", "[a]\r\nj=1\r\nk=new\r\n[A]\r\nk=2\r\n"},
      {"k=before any section\n", "a", "k", "new", "k=before any section\r\n[a]\r\nk=new\r\n"},
      {"\x01\xff[\0\r\n[a]\nk=1\n"s, "a", "k", "new", "\x01\xff[\0\r\n[a]\r\nk=new\r\n"s},
  });
  EXPECT_TRUE(ProfileWriteString("a", "k", std::nullopt, PathOf("missing.ini")));
  EXPECT_FALSE(Exists(PathOf("missing.ini"))) << "a removal makes no file";
}

// A name that would read back as another line, or a value's line break, could plant a section.
TEST_F(ProfileConformance, WritesRefuseNamesThatCouldNotBeReadBackAndCutValuesAtALineBreak) {
  TQV_SKIP_ON_WIN32(kOurEngineOnly);
  const std::string path = PathOf("refused.ini");
  WriteFile(path, "[s]\nk=v\n");
  for (const auto &[section, key] :
       {std::pair{"s", ""}, {"s", "a=b"}, {"s", ";x"}, {"a\nb", "k"}, {"s", "k\r[evil]"}})
    EXPECT_FALSE(ProfileWriteString(section, key, "x", path))
        << ::testing::PrintToString(section + std::string("/") + key);
  EXPECT_EQ(ReadFile(path), "[s]\nk=v\n");
  EXPECT_TRUE(ProfileWriteString(" s ", " k ", "one\r\n[evil]\nx=1", path));
  EXPECT_EQ(ReadFile(path), "[s]\r\nk=one\r\n");
}

}  // namespace
}  // namespace tqv::platform
