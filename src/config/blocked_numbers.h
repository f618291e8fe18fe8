// The fax numbers a user does not want dialled: list B_ of the user's section, one pattern each,
// applied only while the user has the BlockNumbers property. Only the digits of a pattern count.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tqv {

// The buffer IsNumberBlocked reads each pattern with.
inline constexpr std::size_t kBlockedPatternSize = 95;

// Restarts the one blocked-number iteration at B_00000: the pattern cut to size-1 characters, or
// nullopt when that is empty.
std::optional<std::string> FirstBlockedNumber(std::string_view user, std::size_t size);
// The pattern at the next index, likewise.
std::optional<std::string> NextBlockedNumber(std::size_t size);
// Nothing to release.
void EndBlockedNumbers();

// True when the digits of one of the user's patterns begin the digits of the number (other
// characters of the number are skipped): "0049" blocks "(0049) 30-5", a pattern without digits
// blocks every number. Restarts the blocked-number iteration.
bool IsNumberBlocked(std::string_view user, std::string_view faxNumber);

// Appends the pattern to the user's list unless a pattern with the same digits is there, since
// only the digits count. True when added; an empty pattern, which would end the list, is not.
bool AddBlockedNumber(std::string_view user, std::string_view pattern);
// Removes every pattern with the same digits as `pattern`, closing each gap. The number removed,
// or -1 when the file could not be written.
int RemoveBlockedNumber(std::string_view user, std::string_view pattern);

}  // namespace tqv
