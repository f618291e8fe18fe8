// The user iteration over [Recipient List]; see user_list.h.
#include "config/user_list.h"

#include "config/admin_database.h"
#include "config/admin_database_state.h"

namespace tqv {

namespace {

constexpr std::string_view kRecipientListSection = "Recipient List";
// Every section keyed by user name; the other files read them one each.
constexpr std::string_view kPerUserSections[] = {kRecipientListSection, "Recipients Properties", "FaxHeaders",
                                                 "VoiceMail", "Recipients OCR Ratios"};

// The NUL-ended name at `position`; empty past the end, as in a cleared buffer.
std::string_view NameAt(const std::string &names, std::size_t position) {
  if (position >= names.size()) return {};
  const std::size_t end = names.find('\0', position);
  return std::string_view(names).substr(position, end == std::string::npos ? end : end - position);
}

}  // namespace

std::optional<std::string> FirstUser() {
  UserCursor &cursor = AdminDatabase().users;
  cursor.names = AdminGetString(kRecipientListSection, std::nullopt, "", kUserListSize);
  cursor.position = 0;
  const std::string_view first = NameAt(cursor.names, 0);
  if (first.empty()) return std::nullopt;
  return std::string(first);
}

std::optional<std::string> NextUser() {
  UserCursor &cursor = AdminDatabase().users;
  if (!cursor.position) return std::nullopt;
  const std::string_view current = NameAt(cursor.names, *cursor.position);
  if (current.empty()) return std::nullopt;
  *cursor.position += current.size() + 1;
  const std::string_view next = NameAt(cursor.names, *cursor.position);
  if (next.empty()) return std::nullopt;
  return std::string(next);
}

void EndUsers() {}

std::string GetUserFullName(std::string_view user, std::size_t size) {
  return AdminGetString(kRecipientListSection, user, user, size);
}

bool SetUserFullName(std::string_view user, std::string_view fullName) {
  return AdminPutString(kRecipientListSection, user, fullName);
}

bool RemoveUser(std::string_view user) {
  bool written = true;
  for (std::string_view section : kPerUserSections)
    written = AdminPutString(section, user, std::nullopt) && written;
  return AdminRemoveSection(user) && written;
}

}  // namespace tqv
