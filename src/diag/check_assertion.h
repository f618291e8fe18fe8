// Internal consistency checks that report and carry on: a failed check is logged as an error
// under the source "CORVANTA" and signalled audibly, and the program continues.
#pragma once

#include <cstdint>

namespace tqv {

// Does nothing when `condition` holds. Otherwise logs "Assertion failed: '<sourceFile>', line
// <line>" and beeps four times half a second apart, then returns as if the check had passed.
void CheckAssertion(bool condition, const char *sourceFile, std::int32_t line);

}  // namespace tqv
