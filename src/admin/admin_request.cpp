// Recognising and answering administration requests. See admin_request.h.
#include "admin/admin_request.h"

#include <algorithm>

#include "common/string_editors.h"
#include "config/message_strings.h"
#include "config/user_properties.h"
#include "reports/delivery_reports.h"

namespace tqv {

namespace {

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::toupper(static_cast<unsigned char>(x)) == std::toupper(static_cast<unsigned char>(y));
         });
}

}  // namespace

bool IsAdminRequest(const RecipientTable &recipients) {
  return std::any_of(recipients.begin(), recipients.end(), [](const RecipientEntry &entry) {
    return entry.address.size() >= kAdminRequestAddress.size() &&
           EqualsIgnoringCase(std::string_view(entry.address).substr(0, kAdminRequestAddress.size()),
                              kAdminRequestAddress);
  });
}

int HandleAdminRequest(std::string_view user, std::string_view subject, std::string_view /*messageTextFile*/,
                       const AttachmentTable & /*attachments*/) {
  std::string errorText;
  if (!HasProperty(GetUserProperties(user), UserProperty::RemoteAdministration)) {
    errorText = GetString(kStringNoRemoteAdministration);
  } else {
    // The commands themselves are not carried out yet; the user still learns that nothing changed.
    errorText = "Remote administration commands are not available on this server yet.";
  }
  WriteAdminReply(user, subject, false, errorText);
  return -1;
}

}  // namespace tqv
