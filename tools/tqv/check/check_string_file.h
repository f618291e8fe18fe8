// The string file as the library will read it: every text it asks for present in the configured
// language or in English, and every text that takes a value formatted for that value.
#pragma once

#include <string>
#include <string_view>

#include "tqv/check/check_findings.h"

namespace tqv::tool {

// The conversions of a printf format in order, each as its conversion letter ("%-5d of %s" gives
// "ds", "%i" counts as "d"); "%%" takes no value; any other conversion shows as '?'.
std::string FormatConversions(std::string_view format);

// Selects the string file and language the way start-up does and checks every text number in use.
void CheckStringFile(std::string_view mailSystem, std::string_view stringFile, std::string_view language,
                     CheckReport &report);

}  // namespace tqv::tool
