// Reading and writing the properties word of a user; see user_properties.h.
#include "config/user_properties.h"

#include <string>

#include "config/admin_database.h"

namespace tqv {

namespace {

constexpr std::string_view kPropertiesSection = "Recipients Properties";

}  // namespace

std::int32_t GetUserProperties(std::string_view user) {
  return AdminGetInt(kPropertiesSection, user, kDefaultUserProperties);
}

void SetUserProperties(std::string_view user, std::int32_t properties) {
  AdminPutString(kPropertiesSection, user, std::to_string(properties));
}

}  // namespace tqv
