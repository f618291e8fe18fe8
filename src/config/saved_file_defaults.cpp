// Reading and choosing a user's default cover page and template; see saved_file_defaults.h.
#include "config/saved_file_defaults.h"

#include "config/admin_database.h"
#include "config/numbered_list.h"

namespace tqv {

namespace {

constexpr std::string_view kDefaultCoverKey = "DefaultCover";
constexpr std::string_view kDefaultTemplateKey = "DefaultTemplate";

bool GetDefault(SavedFileKind kind, std::string_view key, std::string_view user, std::size_t nameSize,
                std::size_t pathSize, SavedFile &file) {
  file.name = AdminGetString(user, key, "", nameSize);
  file.path.clear();
  if (file.name.empty()) return false;
  std::optional<std::string> path = FindSavedFile(kind, user, file.name, pathSize);
  if (!path) return false;
  file.path = std::move(*path);
  return true;
}

bool SetDefault(SavedFileKind kind, std::string_view key, std::string_view user, std::string_view name) {
  if (name.empty()) {
    AdminPutString(user, key, std::nullopt);
    return true;
  }
  if (!FindSavedFile(kind, user, name, kListValueSize)) return false;
  AdminPutString(user, key, name);
  return true;
}

}  // namespace

bool GetDefaultCover(std::string_view user, std::size_t nameSize, std::size_t pathSize, SavedFile &file) {
  return GetDefault(SavedFileKind::Coverpage, kDefaultCoverKey, user, nameSize, pathSize, file);
}

bool GetDefaultTemplate(std::string_view user, std::size_t nameSize, std::size_t pathSize, SavedFile &file) {
  return GetDefault(SavedFileKind::Template, kDefaultTemplateKey, user, nameSize, pathSize, file);
}

bool SetDefaultCover(std::string_view user, std::string_view name) {
  return SetDefault(SavedFileKind::Coverpage, kDefaultCoverKey, user, name);
}

bool SetDefaultTemplate(std::string_view user, std::string_view name) {
  return SetDefault(SavedFileKind::Template, kDefaultTemplateKey, user, name);
}

}  // namespace tqv
