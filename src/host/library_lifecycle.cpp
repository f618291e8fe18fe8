// Shutdown, the user count, and the reset of all process-wide state for tests.
#include <optional>
#include <string>

#include "common/unique_name.h"
#include "config/admin_database.h"
#include "config/message_strings.h"
#include "config/service_state.h"
#include "config/settings_files.h"
#include "config/user_list.h"
#include "config/user_properties.h"
#include "diag/file_notices.h"
#include "host/entry_points.h"
#include "outgoing/pending_queue.h"
#include "platform/platform_state.h"

namespace tqv::host {

int Shutdown() {
  // Nothing is held open between calls, so there is nothing to release.
  CloseAdminDatabase();
  return 0;
}

int GetNumUsers(std::uint32_t *count) {
  if (count == nullptr) return 0;
  *count = 0;
  for (std::optional<std::string> user = FirstUser(); user; user = NextUser()) {
    if (HasProperty(GetUserProperties(*user), UserProperty::SendFaxes)) ++*count;
  }
  EndUsers();
  return 0;
}

void ResetLibraryStateForTesting() {
  platform::ResetPlatformStateForTesting();
  ResetSettingsPathsForTesting();
  ResetServiceStateForTesting();
  ResetMessageStringsForTesting();
  ResetAdminDatabaseForTesting();
  ResetPendingQueueForTesting();
  ResetScanLoopForTesting();
  ResetUniqueNamesForTesting();
  ResetFileNoticesForTesting();
}

}  // namespace tqv::host
