// Form mode of remote administration: a message text with up to three keyword lines, each
// followed by its saved-file command, and a defaults block. A faulty form (a line without ":",
// an unknown or repeated keyword) runs no command at all; otherwise every command runs and each
// adds its own error text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "outgoing/conversion_tables.h"

namespace tqv {

// A request whose subject begins with this, in any letter case, is a form.
inline constexpr std::string_view kAdminFormSubject = "Corvanta Remote Administration";
// A defaults block must stay below this many characters, or it is dropped whole.
inline constexpr std::size_t kDefaultsBlockLimit = 1024;
// Attachment numbers a keyword line may give: 0 for none, else the message's n-th attachment.
inline constexpr int kHighestFormAttachment = 3;

// Runs the form in the message-text file (then rewritten: it ends up holding the defaults block,
// or a single space). The result of the last command run, 0 when none ran, -1 for a faulty form
// with the faulty line or keyword as the error text. A file that cannot be read is taken as the
// command "defaults".
int RunAdminForm(std::string_view user, std::string_view messageTextFile, const AttachmentTable &attachments,
                 std::string &errorText, std::size_t size);

}  // namespace tqv
