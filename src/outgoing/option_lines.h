// The option lines a sender writes into a message ("::Name,0123 456" adds a recipient,
// "::h,12:30,C=Memo" sets the options). Operations that can fail give 0, or -1 with the reason in
// the caller's error text (a localised string, cut to kMaxErrorText); what earlier lines did
// stays done, as the caller discards the whole message.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "outgoing/conversion_tables.h"

namespace tqv {

// The caller's error text is a buffer of 255 bytes.
inline constexpr std::size_t kErrorTextSize = 255;
inline constexpr std::size_t kMaxErrorText = kErrorTextSize - 1;
// A line of the setup file is read in pieces of at most this many characters.
inline constexpr std::size_t kOptionLineLimit = 254;
inline constexpr std::size_t kOptionTokenLimit = 1024;
// Saved attachments are looked up with a path buffer of this size.
inline constexpr std::size_t kSavedAttachmentPathSize = 260;

// Texts of the string file told to the sender.
inline constexpr int kStringSetupUnreadable = 700;
inline constexpr int kStringNotAnOptionLine = 701;
inline constexpr int kStringSecondOptionsLine = 707;
inline constexpr int kStringTooManyRecipients = 716;  // formatted with the table's limit
inline constexpr int kStringTooManyDocuments = 717;   // formatted with the table's limit
inline constexpr int kStringNoSuchAttachment = 718;   // formatted with the name
inline constexpr int kStringAttachmentMissing = 719;  // formatted with the name
inline constexpr int kStringUnknownOption = 720;      // formatted with the token

// Reads every line of the setup file: a recipient line adds to (or renames the first entry of)
// the recipient table, the one options line sets `options` and may add saved attachments.
int ReadOptionLines(std::string_view user, std::string_view setupPath, RecipientTable &recipients,
                    std::size_t recipientLimit, AttachmentTable &attachments, std::size_t attachmentLimit,
                    FaxOptions &options, std::string &errorText);

// Tokens separated by ',' and ';'. A comma between two number texts stays in the number (a
// dialling pause). Blanks before a token are skipped, blanks after it stay; a separator at the very
// end gives an empty last token. The last of `tokenLimit` tokens keeps the rest of the text.
std::vector<std::string> SplitOptionTokens(std::string_view text, std::size_t tokenLimit);

// True for a non-empty text of digits, "+-,() " only.
bool IsNumberText(std::string_view text);

// One to three tokens, the last a number text: name, [company,] number.
bool IsRecipientLine(const std::vector<std::string> &tokens);

// Appends the recipient of a recipient line. The address "0" adds none but gives the table's first
// entry the line's name and company, where those are not empty.
int AddOptionRecipient(const std::vector<std::string> &tokens, RecipientTable &recipients,
                       std::size_t recipientLimit, std::string &errorText);

// Applies every token of the options line in turn; a later token overrides an earlier one. Every
// token is applied even after one failed; the error text is then that of the last failure.
int ApplyOptions(std::string_view user, const std::vector<std::string> &tokens, AttachmentTable &attachments,
                 std::size_t attachmentLimit, FaxOptions &options, std::string &errorText);

// "h:mm" or "hh:mm": today at that time with the seconds of now, or tomorrow when that minute
// has passed. Out-of-range values roll over as the calendar does.
bool ParseSendTime(std::string_view token, std::int32_t &sendTime);

// "b" or "B" and a number, fewer than 9 characters in all; a number reading as 0 is none.
bool ParseBillingCode(std::string_view token, std::int32_t &billingNumber);

// Copies the user's saved attachment of that name into the work directory and appends the copy.
int AddSavedAttachment(std::string_view user, std::string_view name, AttachmentTable &attachments,
                       std::size_t attachmentLimit, std::string &errorText);

}  // namespace tqv
