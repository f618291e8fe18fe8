// The cover pages, templates and attachments a user keeps on the server: lists C_, T_ and A_ of
// the user's section, entries "name,full path of the stored file", the newest first. Index 0 of
// the cover-page and template lists is the installation's own and is never written here.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "config/numbered_list.h"
#include "config/settings_files.h"

namespace tqv {

// Names refused for cover pages and for templates, in any letter case: index 0 holds them.
inline constexpr std::string_view kReservedCoverName = "COVERPGE";
inline constexpr std::string_view kReservedTemplateName = "TEMPLATE";

struct SavedFile {
  std::string name;
  std::string path;
};

// "C_", "T_", or "A_" for any other kind.
std::string_view SavedFilePrefix(SavedFileKind kind);

// Restarts the one saved-file iteration at index 0 of the user's list. kListEntry with name and
// path cut to their buffer sizes, kListEnd at a missing or empty entry, kListMalformed for an
// entry without a comma. The user name is kept cut to 254 characters.
int FirstSavedFile(SavedFileKind kind, std::string_view user, std::size_t nameSize, std::size_t pathSize,
                   SavedFile &file);
// The next index of the iteration, with the same results.
int NextSavedFile(std::size_t nameSize, std::size_t pathSize, SavedFile &file);
// The entries up to the first gap or malformed entry; restarts the saved-file iteration.
int CountSavedFiles(SavedFileKind kind, std::string_view user);

// The path of the first entry whose name equals `name` without regard to case, cut to
// pathSize-1 characters; nullopt when the list ends first. An entry without a comma is a name
// with an empty path. Every entry the iteration shows can be found, also one beyond the limit.
std::optional<std::string> FindSavedFile(SavedFileKind kind, std::string_view user, std::string_view name,
                                         std::size_t pathSize);
std::optional<std::string> FindCover(std::string_view user, std::string_view name, std::size_t pathSize);
std::optional<std::string> FindTemplate(std::string_view user, std::string_view name, std::size_t pathSize);
std::optional<std::string> FindAttachment(std::string_view user, std::string_view name, std::size_t pathSize);

// Stores `path` under `name` as the user's newest entry: an entry of that name (in any case) is
// replaced in place and its old file deleted; otherwise the list moves down one place and the
// entry at limit-1 drops out, its file left on disk. 0, or -1 for a reserved name.
int AddSavedFile(SavedFileKind kind, std::string_view user, std::string_view name, std::string_view path);
// Deletes the entry of that name and its file and closes the gap; the old last key stays with an
// empty value. 0, or -1 for a reserved name or when no entry has the name.
int DeleteSavedFile(SavedFileKind kind, std::string_view user, std::string_view name);

}  // namespace tqv
