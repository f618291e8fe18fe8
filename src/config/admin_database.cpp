// The path and limits of tqvadmin.ini and its read and write primitives. Reads of a database
// without a path give their defaults; writes to it fail.
#include "config/admin_database.h"

#include <string>
#include <string_view>

#include "common/path_helpers.h"
#include "common/text_limits.h"
#include "config/admin_database_state.h"
#include "diag/log_message.h"
#include "platform/profile.h"

namespace tqv {

namespace {

constexpr std::string_view kAdminDatabaseName = "tqvadmin.ini";

std::size_t LimitIndex(SavedFileKind kind) {
  switch (kind) {
    case SavedFileKind::Coverpage:
      return 0;
    case SavedFileKind::Template:
      return 1;
    default:
      return 2;
  }
}

// A path cut to 259 characters would name another file, so a directory that leaves no room for
// the name gets no database at all.
bool FitsInPath(std::string_view productDirectory) {
  if (productDirectory.size() > kMaxPath) return false;
  std::string joined(productDirectory);
  AppendBackslash(joined);
  return joined.size() + kAdminDatabaseName.size() <= kMaxPath;
}

}  // namespace

AdminDatabaseState &AdminDatabase() {
  static AdminDatabaseState state;
  return state;
}

void InitAdminDatabase(std::int32_t coverLimit, std::int32_t templateLimit, std::int32_t attachmentLimit) {
  InitAdminDatabase(GetProductDirectory(), coverLimit, templateLimit, attachmentLimit);
}

void InitAdminDatabase(std::string_view productDirectory, std::int32_t coverLimit, std::int32_t templateLimit,
                       std::int32_t attachmentLimit) {
  AdminDatabaseState &state = AdminDatabase();
  state.limits = {coverLimit, templateLimit, attachmentLimit};
  if (FitsInPath(productDirectory)) {
    state.path = AdminDatabasePath(productDirectory);
    return;
  }
  state.path.clear();
  const std::string directory(productDirectory);
  LogMessage(nullptr, kServiceEventSource, 1, "Directory '%s' is too long for the administration database",
             directory.c_str());
}

void CloseAdminDatabase() {}

const std::string &AdminDatabaseFile() {
  return AdminDatabase().path;
}

std::int32_t SavedFileLimit(SavedFileKind kind) {
  return AdminDatabase().limits[LimitIndex(kind)];
}

std::string AdminSectionName(std::string_view section) {
  std::string name(section);
  CutText(name, kMaxAdminSection);
  for (char &c : name) {
    if (c == '[') c = '(';
    if (c == ']') c = ')';
  }
  return name;
}

std::string AdminGetString(std::string_view section, std::optional<std::string_view> key,
                           std::string_view defaultValue, std::size_t size) {
  const std::string &file = AdminDatabase().path;
  if (file.empty()) {
    if (!key || size == 0) return {};
    std::string value(defaultValue);
    return CutText(value, size - 1);
  }
  return platform::ProfileReadString(std::string_view(AdminSectionName(section)), key, defaultValue, size,
                                     file);
}

std::int32_t AdminGetInt(std::string_view section, std::string_view key, std::int32_t defaultValue) {
  const std::string &file = AdminDatabase().path;
  if (file.empty()) return defaultValue;
  return platform::ProfileReadInt(AdminSectionName(section), key, defaultValue, file);
}

namespace {

bool HoldsLineEnd(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

}  // namespace

bool AdminPutString(std::string_view section, std::string_view key, std::optional<std::string_view> value) {
  const std::string &file = AdminDatabase().path;
  // A line end would let a learned station identifier write sections and users of its own; no
  // name or value of the database holds one.
  if (file.empty() || HoldsLineEnd(section) || HoldsLineEnd(key) || (value && HoldsLineEnd(*value)))
    return false;
  return platform::ProfileWriteString(AdminSectionName(section), key, value, file);
}

bool AdminRemoveSection(std::string_view section) {
  const std::string &file = AdminDatabase().path;
  if (file.empty()) return false;
  return platform::ProfileWriteString(AdminSectionName(section), std::nullopt, std::nullopt, file);
}

void ResetAdminDatabaseForTesting() {
  AdminDatabase() = AdminDatabaseState{};
}

}  // namespace tqv
