// Reading, finding, adding and deleting a user's saved files; see saved_files.h. Failed writes
// and deletions go unnoticed: the database then shows the list as it was.
#include "config/saved_files.h"

#include "common/text_limits.h"
#include "config/admin_database.h"
#include "config/admin_database_state.h"
#include "config/numbered_list.h"
#include "platform/file_system.h"

namespace tqv {

namespace {

bool IsReservedName(SavedFileKind kind, std::string_view name) {
  if (kind == SavedFileKind::Coverpage) return SameName(name, kReservedCoverName);
  if (kind == SavedFileKind::Template) return SameName(name, kReservedTemplateName);
  return false;
}

// Where AddSavedFile and DeleteSavedFile start: past the reserved index 0 of covers and templates.
std::int32_t FirstWritableIndex(SavedFileKind kind) {
  return kind == SavedFileKind::Coverpage || kind == SavedFileKind::Template ? 1 : 0;
}

int ReadCursorEntry(std::int32_t index, std::size_t nameSize, std::size_t pathSize, SavedFile &file) {
  const SavedFileCursor &cursor = AdminDatabase().savedFiles;
  file = SavedFile{};
  const std::string value = ReadListEntry(cursor.user, cursor.prefix, index);
  if (value.empty()) return kListEnd;
  const std::optional<EntryFields> fields = SplitEntry(value);
  if (!fields) return kListMalformed;
  file.name = CutToBuffer(fields->first, nameSize);
  file.path = CutToBuffer(fields->second, pathSize);
  return kListEntry;
}

// The old file goes, unless the new entry names the very same file.
void DeleteStoredFile(std::string_view oldPath, std::string_view newPath) {
  if (oldPath.empty() || SameName(oldPath, newPath)) return;
  platform::RemoveFile(oldPath);
}

}  // namespace

std::string_view SavedFilePrefix(SavedFileKind kind) {
  switch (kind) {
    case SavedFileKind::Coverpage:
      return "C_";
    case SavedFileKind::Template:
      return "T_";
    default:
      return "A_";
  }
}

int FirstSavedFile(SavedFileKind kind, std::string_view user, std::size_t nameSize, std::size_t pathSize,
                   SavedFile &file) {
  SavedFileCursor &cursor = AdminDatabase().savedFiles;
  cursor.user = user;
  CutText(cursor.user, kMaxName);
  cursor.prefix = SavedFilePrefix(kind);
  cursor.nextIndex = 1;
  return ReadCursorEntry(0, nameSize, pathSize, file);
}

int NextSavedFile(std::size_t nameSize, std::size_t pathSize, SavedFile &file) {
  SavedFileCursor &cursor = AdminDatabase().savedFiles;
  const std::int32_t index = cursor.nextIndex++;
  return ReadCursorEntry(index, nameSize, pathSize, file);
}

int CountSavedFiles(SavedFileKind kind, std::string_view user) {
  SavedFile file;
  if (FirstSavedFile(kind, user, kMaxName + 1, kMaxName + 1, file) < kListEntry) return 0;
  int count = 1;
  while (NextSavedFile(kMaxName + 1, kMaxName + 1, file) == kListEntry)
    ++count;
  return count;
}

std::optional<std::string> FindSavedFile(SavedFileKind kind, std::string_view user, std::string_view name,
                                         std::size_t pathSize) {
  const std::string_view prefix = SavedFilePrefix(kind);
  for (std::int32_t index = 0;; ++index) {
    const std::string value = ReadListEntry(user, prefix, index);
    if (value.empty()) return std::nullopt;
    const std::optional<EntryFields> fields = SplitEntry(value);
    const std::string_view entryName = fields ? fields->first : std::string_view(value);
    if (!entryName.empty() && SameName(entryName, name)) {
      return CutToBuffer(fields ? fields->second : std::string_view(), pathSize);
    }
  }
}

std::optional<std::string> FindCover(std::string_view user, std::string_view name, std::size_t pathSize) {
  return FindSavedFile(SavedFileKind::Coverpage, user, name, pathSize);
}

std::optional<std::string> FindTemplate(std::string_view user, std::string_view name, std::size_t pathSize) {
  return FindSavedFile(SavedFileKind::Template, user, name, pathSize);
}

std::optional<std::string> FindAttachment(std::string_view user, std::string_view name,
                                          std::size_t pathSize) {
  return FindSavedFile(SavedFileKind::Fax, user, name, pathSize);
}

int AddSavedFile(SavedFileKind kind, std::string_view user, std::string_view name, std::string_view path) {
  if (IsReservedName(kind, name)) return -1;
  const std::int32_t limit = SavedFileLimit(kind);
  const std::int32_t first = FirstWritableIndex(kind);
  const std::string_view prefix = SavedFilePrefix(kind);
  std::string newValue(name);
  newValue += ',';
  newValue += path;

  for (std::int32_t index = first; index < limit; ++index) {
    const std::string value = ReadListEntry(user, prefix, index);
    if (value.empty()) break;
    const std::optional<EntryFields> fields = SplitEntry(value);
    if (!fields || !SameName(fields->first, name)) continue;
    DeleteStoredFile(fields->second, path);
    WriteListEntry(user, prefix, index, newValue);
    return 0;
  }

  for (std::int32_t index = limit - 1; index > first; --index) {
    const std::string previous = ReadListEntry(user, prefix, index - 1);
    if (!previous.empty()) WriteListEntry(user, prefix, index, previous);
  }
  WriteListEntry(user, prefix, first, newValue);
  return 0;
}

int DeleteSavedFile(SavedFileKind kind, std::string_view user, std::string_view name) {
  if (IsReservedName(kind, name)) return -1;
  const std::string_view prefix = SavedFilePrefix(kind);
  std::int32_t match = FirstWritableIndex(kind);
  for (;; ++match) {
    const std::string value = ReadListEntry(user, prefix, match);
    if (value.empty()) return -1;
    const std::optional<EntryFields> fields = SplitEntry(value);
    if (!fields || !SameName(fields->first, name)) continue;
    if (!fields->second.empty()) platform::RemoveFile(fields->second);
    break;
  }

  // Each later entry moves up one place; the old last one is left as an empty key.
  for (std::int32_t index = match;; ++index) {
    const std::string next = ReadListEntry(user, prefix, index + 1);
    WriteListEntry(user, prefix, index, next);
    if (next.empty()) return 0;
  }
}

}  // namespace tqv
