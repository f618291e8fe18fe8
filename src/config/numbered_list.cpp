// Keys, reads and splits of the database's numbered lists; see numbered_list.h.
#include "config/numbered_list.h"

#include <cstdio>

#include "common/text_limits.h"
#include "config/admin_database.h"

namespace tqv {

namespace {

char LowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

std::string NumberedKey(std::string_view prefix, std::int32_t index) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "%05d", static_cast<int>(index));
  std::string key(prefix);
  key += digits;
  return key;
}

std::string ReadListEntry(std::string_view section, std::string_view prefix, std::int32_t index) {
  return AdminGetString(section, std::string_view(NumberedKey(prefix, index)), "", kListValueSize);
}

void WriteListEntry(std::string_view section, std::string_view prefix, std::int32_t index,
                    std::string_view value) {
  AdminPutString(section, NumberedKey(prefix, index), value);
}

bool RemoveListEntry(std::string_view section, std::string_view prefix, std::int32_t index) {
  for (;; ++index) {
    const std::string next = ReadListEntry(section, prefix, index + 1);
    if (next.empty()) return AdminPutString(section, NumberedKey(prefix, index), std::nullopt);
    if (!AdminPutString(section, NumberedKey(prefix, index), next)) return false;
  }
}

std::optional<EntryFields> SplitEntry(std::string_view value) {
  const std::size_t comma = value.find(',');
  if (comma == std::string_view::npos) return std::nullopt;
  return EntryFields{value.substr(0, comma), value.substr(comma + 1)};
}

bool SameName(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (LowerAscii(left[i]) != LowerAscii(right[i])) return false;
  }
  return true;
}

std::string CutToBuffer(std::string_view text, std::size_t size) {
  std::string copy(text);
  return CutText(copy, CharsInBuffer(size));
}

}  // namespace tqv
