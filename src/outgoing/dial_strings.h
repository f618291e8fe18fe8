// From a recipient address to what is dialled: the number taken out of the address, the rules that
// shorten international numbers for the local network, and the JFAX patterns and mail address.
// Nothing here fails: a number that fits no rule stays as it is, and every result is cut to its room.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tqv {

// Characters kept of a fax number, of a recipient's name and of a company taken from an address.
inline constexpr std::size_t kMaxFaxNumber = 94;
inline constexpr std::size_t kMaxAddressName = 94;
inline constexpr std::size_t kMaxAddressCompany = 46;
// The display name before '<' is taken up to this many characters before it is split.
inline constexpr std::size_t kMaxDisplayName = 255;
// The room of every dial string and JFAX address, NUL included: 94 characters.
inline constexpr std::size_t kDialStringRoom = 95;
// JFAX patterns are keys "Dial0" to "Dial19".
inline constexpr int kJfaxPatternCount = 20;

// Fills `number` from a recipient address. "John_Smith.ACME.+49 89 123 <x@y>" (display-name form)
// also sets `name` and `company` from the parts before the number; a part the display name does
// not have leaves its field as it was. Any other address gives its text before the first '@'.
void ExtractFaxNumber(std::string_view address, std::string &number, std::string &name, std::string &company);

// Rewrites the number into the shortest string the local network needs: "+<own country code>"
// and "(<own area code>)" go, any other "+" becomes the international prefix. A code that is not
// given at all is the one start-up read; an empty one turns its rule off. Cut to room-1 characters.
void MakeDialString(std::string &number, std::size_t room,
                    std::optional<std::string_view> prefix = std::nullopt,
                    std::optional<std::string_view> countryCode = std::nullopt,
                    std::optional<std::string_view> areaCode = std::nullopt);

// True, with the number moved to the front, when the number begins with "(<area code>)" in its
// significant characters; false with the number unchanged otherwise or for an empty area code.
bool StripAreaCode(std::string &number, std::string_view areaCode);

// True when a [JFAX Dial] pattern matches the number and digits remain without the prefix. The
// first pattern without a significant character ends the list. The number is not changed.
bool IsJfaxNumber(std::string_view number, std::string_view prefix);

// Drops the international prefix from the start of the number (without a prefix given, the one
// start-up read), then everything that is not a digit.
void StripInternationalPrefix(std::string &number, std::optional<std::string_view> prefix = std::nullopt);

// Rewrites the number into "<digits>@<[JFAX Dial] Domain>", or digits only when that does not fit
// into `room` with its NUL.
void MakeJfaxAddress(std::string &number, std::string_view prefix, std::size_t room);

// Significant characters of a phone number are the digits, '(', ')' and '+'; the others are
// passed over when numbers are compared. The end of the text reads as '\0'.
bool IsSignificant(char c);
// Moves `position` to the next significant character at or after it, or to the end; returns the
// character there.
char NextSignificant(std::string_view text, std::size_t &position);
// Moves `position` to the count-th significant character from it, then one past it unless that is
// the end.
void SkipSignificant(std::string_view text, std::size_t &position, std::size_t count);
// True when both texts agree on their first `count` significant characters, or both end earlier
// after the same ones.
bool MatchSignificant(std::string_view a, std::string_view b, std::size_t count);

// Keeps only the digits.
std::string &DigitsOnly(std::string &text);

}  // namespace tqv
