// User properties by their flag names, as `tqv admin` takes and shows them: "SendFaxes,HighResolution"
// sets a word, "+BlockNumbers" and "-HighResolution" change one bit of the word there is.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tqv::tool {

// Applies a comma-separated list to `current`. Names (any letter case) without a sign say which
// named bits are on, the others off; "+Name" and "-Name" switch one bit; a number (decimal or
// 0x...) is the whole word. Bits without a name are kept unless a number is given. An empty list
// turns every named bit off. nullopt with `error` set for an unknown name.
std::optional<std::int32_t> ApplyPropertyList(std::string_view list, std::int32_t current,
                                              std::string &error);

// The names of the bits set in the word, in bit order; bits without a name as "0x1000".
std::vector<std::string> PropertyNames(std::int32_t properties);

// "7425 (0x1D01): SendFaxes, RemoteAdministration, ..."
std::string PropertiesText(std::int32_t properties);

// "SendFaxes, ReceiveUnrouted, ..." for help texts and error messages.
std::string AllPropertyNames();

}  // namespace tqv::tool
