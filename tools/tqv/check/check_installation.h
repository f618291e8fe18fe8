// `tqv check`: an installation looked at the way the library will use it, from the Windows
// directory to the stored files of saved-file entries. Reading only: nothing is created or written
// back, so a check never changes what it checks.
#pragma once

#include <string>

#include "tqv/check/check_findings.h"

namespace tqv::tool {

// Every finding of the installation the Windows directory (TQVSPOOL_WINDIR on POSIX) points to.
// Checks that depend on an earlier one are left out when that one failed, so each fault is
// reported once.
CheckReport CheckInstallation();

// One line per finding ("error: ..."); with the directories, one line per directory as well.
std::string RenderCheckText(const CheckReport &report, bool withDirectories);
// A JSON array of {"severity", "text"}.
std::string RenderCheckJson(const CheckReport &report);

}  // namespace tqv::tool
