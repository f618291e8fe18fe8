// The text of one INI file as the profile functions see it: queries, edits that keep every other
// line byte for byte, and the bytes to write back. Pure memory work: any input parses (binary junk
// included), and an edit that could not be read back is refused with false.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tqv::platform {

class IniDocument {
 public:
  IniDocument() = default;
  // A line ends at CR, LF or CR LF; a NUL ends what is read of its line.
  explicit IniDocument(std::string_view bytes);

  // The indexes point into the lines, so a copy would point into its source; moves are safe.
  IniDocument(IniDocument &&) = default;
  IniDocument &operator=(IniDocument &&) = default;
  IniDocument(const IniDocument &) = delete;
  IniDocument &operator=(const IniDocument &) = delete;

  // Names are compared without regard to ASCII case, with surrounding blanks ignored. Only the
  // first section of a name counts, and in it the first key of a name. The views returned live
  // until the next edit.

  // The value (trimmed, one pair of surrounding quotes removed), or nullopt when the key is missing.
  std::optional<std::string_view> Value(std::string_view section, std::string_view key) const;
  // The key names of the section in file order, each once, as spelled in the file.
  std::vector<std::string_view> KeyNames(std::string_view section) const;
  // The section names in file order, each once, as spelled in the file.
  std::vector<std::string_view> SectionNames() const;

  // Replaces the key's line by "key=value", or appends the key after the last key of its section,
  // or appends the section after the last line. The value ends at its first line break. False,
  // with nothing changed, for an empty key and for names that could not be read back (a name with
  // a line break, a key with '=' or starting with '[' or ';').
  bool SetValue(std::string_view section, std::string_view key, std::string_view value);
  // Drops every line of the key in the section, so a duplicate cannot surface; true when any went.
  bool RemoveKey(std::string_view section, std::string_view key);
  // Drops every section of the name, header to next header; true when any went.
  bool RemoveSection(std::string_view section);

  // Every line, each ended by CR LF.
  std::string Serialize() const;

 private:
  enum class LineKind { Other, Comment, Section, Key };

  struct Line {
    std::string raw;  // as in the file, without its line end
    LineKind kind = LineKind::Other;
    std::string name;   // section or key name, trimmed
    std::string value;  // key value, trimmed and unquoted
  };

  struct NameLess {
    using is_transparent = void;
    bool operator()(std::string_view left, std::string_view right) const;
  };
  using NameMap = std::map<std::string_view, std::size_t, NameLess>;  // name -> line or section

  struct SectionIndex {
    std::size_t header = 0;             // line of the header
    std::size_t end = 0;                // line of the next header, or the line count
    std::size_t lastKeyLine = 0;        // where a new key goes after; the header when there is none
    std::vector<std::size_t> keyOrder;  // first line of each key name, in file order
    NameMap keys;
  };

  static Line ParseLine(std::string raw);
  // Rebuilds the indexes after the lines changed; the views in them point into lines_.
  void Reindex();
  const SectionIndex *FindSection(std::string_view name) const;

  std::vector<Line> lines_;
  std::vector<SectionIndex> sections_;  // the first section of each name, in file order
  NameMap sectionByName_;
};

}  // namespace tqv::platform
