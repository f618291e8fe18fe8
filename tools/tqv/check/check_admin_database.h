// The administration database as far as the library trusts it to be well formed: routing entries
// with their comma, routed users who are set up as users, saved files whose stored file exists.
#pragma once

#include <string_view>

#include "tqv/check/check_findings.h"

namespace tqv::tool {

// Checks tqvadmin.ini of the product directory.
void CheckAdminDatabase(std::string_view productDirectory, CheckReport &report);

}  // namespace tqv::tool
