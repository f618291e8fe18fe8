// Parsing, querying and editing INI text with the rules of the Windows profile functions.
// Nothing here fails on input: every byte sequence is some set of lines, and unreadable lines are
// kept as they are.
#include "platform/ini_document.h"

#include <algorithm>
#include <utility>

namespace tqv::platform {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && IsBlank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back()))
    text.remove_suffix(1);
  return text;
}

char FoldCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool SameName(std::string_view left, std::string_view right) {
  return left.size() == right.size() && std::equal(left.begin(), left.end(), right.begin(),
                                                   [](char a, char b) { return FoldCase(a) == FoldCase(b); });
}

// What the caller's C string holds: up to its first NUL.
std::string_view UpToNul(std::string_view text) {
  return text.substr(0, text.find('\0'));
}

// A name as the profile functions take it: a C string, surrounding blanks ignored.
std::string NormalizeName(std::string_view name) {
  return std::string(TrimBlanks(UpToNul(name)));
}

std::string_view Unquote(std::string_view value) {
  if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front()) {
    return value.substr(1, value.size() - 2);
  }
  return value;
}

}  // namespace

bool IniDocument::NameLess::operator()(std::string_view left, std::string_view right) const {
  return std::lexicographical_compare(
      left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
        return static_cast<unsigned char>(FoldCase(a)) < static_cast<unsigned char>(FoldCase(b));
      });
}

IniDocument::IniDocument(std::string_view bytes) {
  // CR, LF and CR LF each end a line, in any mix: a file saved with old Mac line ends is as
  // many lines to a Windows reader as it shows.
  std::size_t start = 0;
  while (start < bytes.size()) {
    const std::size_t end = bytes.find_first_of("\r\n", start);
    if (end == std::string_view::npos) {
      lines_.push_back(ParseLine(std::string(bytes.substr(start))));
      break;
    }
    lines_.push_back(ParseLine(std::string(bytes.substr(start, end - start))));
    start = end + (bytes[end] == '\r' && end + 1 < bytes.size() && bytes[end + 1] == '\n' ? 2 : 1);
  }
  Reindex();
}

IniDocument::Line IniDocument::ParseLine(std::string raw) {
  Line line;
  line.raw = std::move(raw);
  const std::string_view text = TrimBlanks(UpToNul(line.raw));
  if (text.empty()) return line;
  if (text.front() == '[') {
    const std::string_view inside = text.substr(1);
    line.kind = LineKind::Section;
    // The name runs to the last ']', so "[a]b]" is section "a]b"; without one, to the line end.
    line.name = TrimBlanks(inside.substr(0, inside.rfind(']')));
  } else if (text.front() == ';') {
    line.kind = LineKind::Comment;
  } else if (const std::size_t equals = text.find('='); equals != std::string_view::npos) {
    // "=value" is a key too, with an empty name.
    line.kind = LineKind::Key;
    line.name = TrimBlanks(text.substr(0, equals));
    line.value = Unquote(TrimBlanks(text.substr(equals + 1)));
  }
  return line;
}

void IniDocument::Reindex() {
  sections_.clear();
  sectionByName_.clear();
  SectionIndex *current = nullptr;  // null before the first header and inside duplicate sections
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    const Line &line = lines_[i];
    if (line.kind == LineKind::Section) {
      if (current != nullptr) current->end = i;
      current = nullptr;
      if (sectionByName_.emplace(line.name, sections_.size()).second) {
        SectionIndex &section = sections_.emplace_back();
        section.header = i;
        section.end = lines_.size();
        section.lastKeyLine = i;
        current = &section;
      }
    } else if (line.kind == LineKind::Key && current != nullptr) {
      current->lastKeyLine = i;
      if (current->keys.emplace(line.name, i).second) current->keyOrder.push_back(i);
    }
  }
}

const IniDocument::SectionIndex *IniDocument::FindSection(std::string_view name) const {
  const auto found = sectionByName_.find(TrimBlanks(UpToNul(name)));
  return found == sectionByName_.end() ? nullptr : &sections_[found->second];
}

std::optional<std::string_view> IniDocument::Value(std::string_view section, std::string_view key) const {
  const SectionIndex *index = FindSection(section);
  if (index == nullptr) return std::nullopt;
  const auto found = index->keys.find(TrimBlanks(UpToNul(key)));
  if (found == index->keys.end()) return std::nullopt;
  return std::string_view(lines_[found->second].value);
}

std::vector<std::string_view> IniDocument::KeyNames(std::string_view section) const {
  std::vector<std::string_view> names;
  if (const SectionIndex *index = FindSection(section)) {
    names.reserve(index->keyOrder.size());
    for (std::size_t line : index->keyOrder)
      names.emplace_back(lines_[line].name);
  }
  return names;
}

std::vector<std::string_view> IniDocument::SectionNames() const {
  std::vector<std::string_view> names;
  names.reserve(sections_.size());
  for (const SectionIndex &index : sections_)
    names.emplace_back(lines_[index.header].name);
  return names;
}

bool IniDocument::SetValue(std::string_view section, std::string_view key, std::string_view value) {
  // Copies first: the arguments may be views into this document.
  const std::string sectionName = NormalizeName(section);
  const std::string keyName = NormalizeName(key);
  const std::string text(value.substr(0, value.find_first_of(std::string_view("\0\r\n", 3))));

  // A line break would end the header or key line early and start a line of the caller's choice.
  // A key without a name reads back, but the system's own function refuses to write one.
  if (keyName.empty() || sectionName.find_first_of("\r\n") != std::string::npos ||
      keyName.find_first_of("\r\n") != std::string::npos)
    return false;
  Line header = ParseLine("[" + sectionName + "]");
  const SectionIndex *index = FindSection(sectionName);
  if (index != nullptr) {
    const auto found = index->keys.find(keyName);
    if (found != index->keys.end()) {
      const std::size_t lineNumber = found->second;
      lines_[lineNumber] = ParseLine(lines_[lineNumber].name + "=" + text);
      Reindex();
      return true;
    }
  }
  Line keyLine = ParseLine(keyName + "=" + text);
  if (keyLine.kind != LineKind::Key || keyLine.name != keyName) return false;

  if (index != nullptr) {
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(index->lastKeyLine + 1), std::move(keyLine));
  } else {
    // Straight after the last line, with no blank line between: the bytes Windows writes.
    lines_.push_back(std::move(header));
    lines_.push_back(std::move(keyLine));
  }
  Reindex();
  return true;
}

bool IniDocument::RemoveKey(std::string_view section, std::string_view key) {
  const SectionIndex *index = FindSection(section);
  if (index == nullptr) return false;
  const std::string keyName = NormalizeName(key);
  const auto first = lines_.begin() + static_cast<std::ptrdiff_t>(index->header + 1);
  const auto last = lines_.begin() + static_cast<std::ptrdiff_t>(index->end);
  const auto kept = std::remove_if(first, last, [&](const Line &line) {
    return line.kind == LineKind::Key && SameName(line.name, keyName);
  });
  if (kept == last) return false;
  lines_.erase(kept, last);
  Reindex();
  return true;
}

bool IniDocument::RemoveSection(std::string_view section) {
  const std::string sectionName = NormalizeName(section);
  std::vector<Line> kept;
  kept.reserve(lines_.size());
  bool dropping = false;
  bool removed = false;
  for (Line &line : lines_) {
    if (line.kind == LineKind::Section) {
      dropping = SameName(line.name, sectionName);
      removed = removed || dropping;
    }
    if (!dropping) kept.push_back(std::move(line));
  }
  lines_ = std::move(kept);
  Reindex();
  return removed;
}

std::string IniDocument::Serialize() const {
  std::size_t total = 0;
  for (const Line &line : lines_)
    total += line.raw.size() + 2;
  std::string bytes;
  bytes.reserve(total);
  for (const Line &line : lines_) {
    bytes += line.raw;
    bytes += "\r\n";
  }
  return bytes;
}

}  // namespace tqv::platform
