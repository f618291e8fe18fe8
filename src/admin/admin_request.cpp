// Recognising and answering administration requests. See admin_request.h.
#include "admin/admin_request.h"

#include <algorithm>
#include <string>

#include "admin/admin_commands.h"
#include "admin/admin_error_text.h"
#include "admin/admin_form.h"
#include "common/string_editors.h"
#include "common/text_limits.h"
#include "config/message_strings.h"
#include "config/user_properties.h"
#include "reports/delivery_reports.h"

namespace tqv {

bool IsAdminRequest(const RecipientTable &recipients) {
  return std::any_of(recipients.begin(), recipients.end(), [](const RecipientEntry &entry) {
    return BeginsWithWord(entry.address, kAdminRequestAddress);
  });
}

int HandleAdminRequest(std::string_view user, std::string_view subject, std::string_view messageTextFile,
                       const AttachmentTable &attachments) {
  std::string errorText;
  if (!HasProperty(GetUserProperties(user), UserProperty::RemoteAdministration)) {
    errorText = LookupString(kStringNoRemoteAdministration, kAdminErrorTextSize);
    WriteAdminReply(user, subject, false, errorText);
    return -1;
  }

  std::string command(subject);
  TrimRight(CutText(command, kMaxName));
  const int result = BeginsWithWord(command, kAdminFormSubject)
                         ? RunAdminForm(user, messageTextFile, attachments, errorText, kAdminCommandRoom)
                         : RunAdminCommand(user, command, messageTextFile, MessageAttachment(attachments, 1),
                                           MessageAttachment(attachments, 2), errorText, kAdminCommandRoom);
  WriteAdminReply(user, subject, result >= 0, errorText);
  return result >= 0 ? 0 : -1;
}

}  // namespace tqv
