// Messages to the remote-administration address: recognised among a message's recipients and
// answered with an administration reply instead of being faxed. Handling never fails silently:
// every request gets exactly one reply.
#pragma once

#include <string_view>

#include "outgoing/conversion_tables.h"

namespace tqv {

// The address users write to; any recipient address that begins with it, in any letter case,
// makes the whole message an administration request.
inline constexpr std::string_view kAdminRequestAddress = "FAXADMIN";

// Texts of the string file told to the user.
inline constexpr int kStringNoRemoteAdministration = 828;

bool IsAdminRequest(const RecipientTable &recipients);

// Carries out the request of `user` and replies with what the user now has. 0 when the request
// succeeded, -1 when it was refused or failed; the reply is sent either way.
int HandleAdminRequest(std::string_view user, std::string_view subject, std::string_view messageTextFile,
                       const AttachmentTable &attachments);

}  // namespace tqv
