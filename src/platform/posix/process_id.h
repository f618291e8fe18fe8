// This process's id, asked of the kernel once and again only after a fork, for names that must
// differ among processes. Cannot fail.
#pragma once

namespace tqv::platform {

int CurrentProcessId();

}  // namespace tqv::platform
