// Which platform backend the suite runs against, and the few process services the tests need from
// either operating system, so tests themselves stay free of conditionals.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace tqv::testing {

#if defined(_WIN32)
inline constexpr bool kWin32Backend = true;
#else
inline constexpr bool kWin32Backend = false;
#endif

void SetEnvironment(const std::string &name, const std::string &value);
void UnsetEnvironment(const std::string &name);

// A new, empty directory under the system's temporary directory; empty on failure.
std::string MakeTemporaryDirectory();

// Windows only: replaces every value of the user's "Control Panel\International" key by the
// "name=value" lines given (none: no regional settings at all), as WIN.INI's [intl] does on POSIX.
void ReplaceRegionalRegistryValues(std::string_view intlLines);

}  // namespace tqv::testing

// Skips a test whose subject exists only on the POSIX backend (flock, drive variables, the
// event-log file, ELF symbols).
#define TQV_SKIP_ON_WIN32(reason) \
  if (::tqv::testing::kWin32Backend) GTEST_SKIP() << (reason)
