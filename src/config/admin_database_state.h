// The process-wide state of the administration database: its path, the list limits and the four
// iteration cursors. Only the database's own files include this; the host calls one entry point
// at a time, so nothing here is locked.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "config/admin_database.h"

namespace tqv {

struct UserCursor {
  std::string names;                    // key names of Recipient List, each followed by a NUL
  std::optional<std::size_t> position;  // start of the current name; unset before FirstUser
};

struct SavedFileCursor {
  std::string user;
  std::string_view prefix = "C_";
  std::int32_t nextIndex = 0;
};

struct BlockedNumberCursor {
  std::string user;
  std::int32_t index = 0;
};

struct RouteCursor {
  std::string_view prefix = "DTMF_";
  std::int32_t index = 0;
};

struct AdminDatabaseState {
  std::string path;
  // By SavedFileKind: cover pages, templates, attachments.
  std::array<std::int32_t, 3> limits{kInitialSavedFileLimit, kInitialSavedFileLimit, kInitialSavedFileLimit};
  // One cursor per family, so that an iteration of one family may run inside another's.
  UserCursor users;
  SavedFileCursor savedFiles;
  BlockedNumberCursor blockedNumbers;
  RouteCursor routes;
};

AdminDatabaseState &AdminDatabase();

}  // namespace tqv
