// The administration database tqvadmin.ini: where it is, the saved-file list limits, and the two
// primitives every reader and writer of it goes through. Nothing of the file is kept between
// calls; a missing file reads as empty and a failed write leaves the file as it was.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "config/settings_files.h"

namespace tqv {

// Section names are cut to this many characters before "[" and "]" are mapped.
inline constexpr std::size_t kMaxAdminSection = 510;
// The list limit of every saved-file kind until InitAdminDatabase runs.
inline constexpr std::int32_t kInitialSavedFileLimit = 5;

// Stores the path of tqvadmin.ini in the product directory (TQVMSERV.INI [Corvanta] Directory)
// and the list limits of cover pages, templates and attachments. A product directory too long
// for a 259-character path is logged and leaves no database: every read gives its default and
// every write fails.
void InitAdminDatabase(std::int32_t coverLimit, std::int32_t templateLimit, std::int32_t attachmentLimit);
// The same with the product directory given.
void InitAdminDatabase(std::string_view productDirectory, std::int32_t coverLimit, std::int32_t templateLimit,
                       std::int32_t attachmentLimit);
// Nothing is held open, so there is nothing to close.
void CloseAdminDatabase();

// The path InitAdminDatabase stored; empty before it ran.
const std::string &AdminDatabaseFile();
// How many entries AddSavedFile keeps in a list of this kind.
std::int32_t SavedFileLimit(SavedFileKind kind);

// The section as stored: cut to kMaxAdminSection characters, "[" and "]" as "(" and ")", so
// that a user name can name a section.
std::string AdminSectionName(std::string_view section);

// GetPrivateProfileString on the database: the value (or `defaultValue`) cut to size-1
// characters; without a key, the key names of the section, each followed by a NUL.
std::string AdminGetString(std::string_view section, std::optional<std::string_view> key,
                           std::string_view defaultValue, std::size_t size);
// GetPrivateProfileInt on the database.
std::int32_t AdminGetInt(std::string_view section, std::string_view key, std::int32_t defaultValue);
// Sets the key, or removes it without a value. False when the file could not be written, or when
// a name or the value holds a line end (it would write lines of its own).
bool AdminPutString(std::string_view section, std::string_view key, std::optional<std::string_view> value);
// Removes the whole section with every key in it. False when the file could not be written.
bool AdminRemoveSection(std::string_view section);

// Forgets the path, the limits and all four iteration cursors.
void ResetAdminDatabaseForTesting();

}  // namespace tqv
