// The numbered lists of the administration database: keys made of a prefix and a five-digit
// index (C_00000, CSID_00012), read until the first missing or empty entry, with values of two
// fields split at the first comma. Reading cannot fail: a missing entry reads as empty.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tqv {

// Results of the list readers.
inline constexpr int kListEntry = 1;       // an entry was returned
inline constexpr int kListEnd = 0;         // missing or empty: the list has ended
inline constexpr int kListMalformed = -1;  // the entry has no comma; callers stop here too

// List values are read with a buffer of this size: at most 510 characters.
inline constexpr std::size_t kListValueSize = 511;

struct EntryFields {
  std::string_view first;   // up to the first comma
  std::string_view second;  // everything after it
};

// Prefix and index in five digits with leading zeros, as "%s%05d" makes it.
std::string NumberedKey(std::string_view prefix, std::int32_t index);

// The entry's value (at most 510 characters); empty when the key is missing.
std::string ReadListEntry(std::string_view section, std::string_view prefix, std::int32_t index);
// Writes the entry; an empty value is kept as a key with nothing after "=".
void WriteListEntry(std::string_view section, std::string_view prefix, std::int32_t index,
                    std::string_view value);

// Removes the entry at `index`: each later entry up to the end of the list moves up one place and
// the key of the old last one goes, so the list stays without a gap for its readers. False when a
// write failed, which may leave an entry twice.
bool RemoveListEntry(std::string_view section, std::string_view prefix, std::int32_t index);

// The two fields, or nullopt when the value has no comma.
std::optional<EntryFields> SplitEntry(std::string_view value);

// Names as the database compares them: without regard to ASCII letter case.
bool SameName(std::string_view left, std::string_view right);

// The text as a buffer of `size` bytes holds it.
std::string CutToBuffer(std::string_view text, std::size_t size);

}  // namespace tqv
