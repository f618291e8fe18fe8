// `tqv admin user`: the users of tqvadmin.ini with their properties, full name, fax header,
// voicemail box, saved files, blocked numbers and routing entries. Each command writes its result
// to `out` and a one-line reason to `err`, and returns the exit code.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace tqv::tool {

// What `user add` and `user set` change; what is not given stays as it is. Texts are in the
// database's Windows-1252 (see PrepareUserChanges).
struct UserChanges {
  std::optional<std::string> fullName;
  std::optional<std::string> properties;    // a list for ApplyPropertyList
  std::optional<std::string> faxHeader;     // empty: no header
  std::optional<std::string> voicemailBox;  // empty: no box
  std::optional<std::string> voicemailText;
  std::optional<std::string> coverFile;     // the installation's cover page COVERPGE
  std::optional<std::string> templateFile;  // the installation's template TEMPLATE
  std::optional<std::string> defaultCover;  // empty: no default
  std::optional<std::string> defaultTemplate;
};

// Converts the texts from the command line and checks every value against what the library
// reads back; the reason of the first refused one, or an empty text.
std::string PrepareUserChanges(UserChanges &changes);

// `create`: the user must be new (add); otherwise the user must exist (set).
int ChangeUserCommand(std::string_view user, const UserChanges &changes, bool create, std::ostream &out,
                      std::ostream &err);
// Takes the user out of the database with the routing entries naming the user, and deletes the
// user's stored files (not the installation's COVERPGE and TEMPLATE) unless `keepFiles`.
int RemoveUserCommand(std::string_view user, bool keepFiles, std::ostream &out, std::ostream &err);
int ListUsersCommand(bool json, std::ostream &out);
int ShowUserCommand(std::string_view user, bool json, std::ostream &out, std::ostream &err);

}  // namespace tqv::tool
