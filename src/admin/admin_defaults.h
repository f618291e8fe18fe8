// The defaults a user sets by mail: default cover page and template, personal fax header line and
// resolution, from a block of "key=value" lines. Every key given is applied on its own, so one
// bad value does not keep the others from taking effect; each failure adds its line to the
// error text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tqv {

// Values of the block are cut to this many characters.
inline constexpr std::size_t kMaxDefaultsValue = 254;
// A bad resolution value is shown with at most this many characters.
inline constexpr std::size_t kShownResolutionValue = 100;

// Texts of the string file told to the user.
inline constexpr int kStringDefaultsWithFile = 807;
inline constexpr int kStringNoSuchCover = 904;     // formatted with the name
inline constexpr int kStringNoSuchTemplate = 905;  // formatted with the name

// Reads the block file ("C", "COVERPAGE", "T", "TEMPLATE", "F", "FAXHEADER", "FAX HEADER", "R",
// "RESOLUTION" in any case; blank and ";;" lines skipped; a later line of a key wins) and applies
// it. -1 with the line (no "=") or the key (unknown) as the error text before anything is
// applied; -1 when any setting failed; a block file that cannot be read sets nothing and gives 0.
int DefaultsCommand(std::string_view user, std::string_view blockFile, std::string_view firstAttachment,
                    std::string &errorText, std::size_t size);

// An empty name removes the default cover page; an empty template name chooses "TEMPLATE".
// -1 (904, 905) when the user has no saved file of the name.
int ApplyDefaultCover(std::string_view user, std::string_view name, std::string &errorText, std::size_t size);
int ApplyDefaultTemplate(std::string_view user, std::string_view name, std::string &errorText,
                         std::size_t size);
// An empty text leaves the user without a personal header.
int ApplyFaxHeader(std::string_view user, std::string_view text);
// "n", "normal", "h" or "high" in any case; any other value gives -1 and "RESOLUTION=#value#".
int ApplyResolution(std::string_view user, std::string_view value, std::string &errorText, std::size_t size);

}  // namespace tqv
