// The blocked-number list and the prefix match of a fax number; see blocked_numbers.h.
#include "config/blocked_numbers.h"

#include "config/admin_database_state.h"
#include "config/numbered_list.h"
#include "config/user_properties.h"

namespace tqv {

namespace {

constexpr std::string_view kBlockedPrefix = "B_";

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

std::optional<std::string> ReadCursorPattern(std::size_t size) {
  const BlockedNumberCursor &cursor = AdminDatabase().blockedNumbers;
  std::string pattern = CutToBuffer(ReadListEntry(cursor.user, kBlockedPrefix, cursor.index), size);
  if (pattern.empty()) return std::nullopt;
  return pattern;
}

bool PatternMatches(std::string_view pattern, std::string_view number) {
  std::size_t position = 0;
  for (char wanted : pattern) {
    if (!IsDigit(wanted)) continue;
    while (position < number.size() && !IsDigit(number[position]))
      ++position;
    if (position == number.size() || number[position] != wanted) return false;
    ++position;
  }
  return true;
}

std::string DigitsOf(std::string_view text) {
  std::string digits;
  for (char c : text)
    if (IsDigit(c)) digits += c;
  return digits;
}

}  // namespace

std::optional<std::string> FirstBlockedNumber(std::string_view user, std::size_t size) {
  BlockedNumberCursor &cursor = AdminDatabase().blockedNumbers;
  cursor.user = user;
  cursor.index = 0;
  return ReadCursorPattern(size);
}

std::optional<std::string> NextBlockedNumber(std::size_t size) {
  ++AdminDatabase().blockedNumbers.index;
  return ReadCursorPattern(size);
}

void EndBlockedNumbers() {}

bool IsNumberBlocked(std::string_view user, std::string_view faxNumber) {
  // The properties are read for each pattern: the file may change while the list is walked.
  for (std::optional<std::string> pattern = FirstBlockedNumber(user, kBlockedPatternSize); pattern;
       pattern = NextBlockedNumber(kBlockedPatternSize)) {
    if (!HasProperty(GetUserProperties(user), UserProperty::BlockNumbers)) return false;
    if (PatternMatches(*pattern, faxNumber)) return true;
  }
  return false;
}

bool AddBlockedNumber(std::string_view user, std::string_view pattern) {
  if (pattern.empty()) return false;
  const std::string digits = DigitsOf(pattern);
  std::int32_t index = 0;
  for (std::string value; !(value = ReadListEntry(user, kBlockedPrefix, index)).empty(); ++index)
    if (DigitsOf(value) == digits) return false;
  WriteListEntry(user, kBlockedPrefix, index, pattern);
  return true;
}

int RemoveBlockedNumber(std::string_view user, std::string_view pattern) {
  const std::string digits = DigitsOf(pattern);
  int removed = 0;
  for (std::int32_t index = 0;;) {
    const std::string value = ReadListEntry(user, kBlockedPrefix, index);
    if (value.empty()) return removed;
    if (DigitsOf(value) == digits) {
      if (!RemoveListEntry(user, kBlockedPrefix, index)) return -1;
      ++removed;
    } else {
      ++index;
    }
  }
}

}  // namespace tqv
