// The commands of remote administration: "C=", "T=" or "A=" and a name store the attached file
// as a saved cover page, template or attachment, followed by ",default" also make it the default
// and by ",delete" remove it; "defaults" reads a defaults block. A command that fails gives -1
// with the reason in the error text and leaves the database and the directories as they were.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "config/settings_files.h"
#include "outgoing/conversion_tables.h"

namespace tqv {

// A command is cut to this many characters, and split into at most this many parts.
inline constexpr std::size_t kMaxCommandText = 254;
inline constexpr std::size_t kMaxCommandParts = 23;
inline constexpr std::string_view kDefaultsCommandWord = "defaults";

// Texts of the string file told to the user.
inline constexpr int kStringNoFileAttached = 800;
inline constexpr int kStringAttachedFileMissing = 801;
inline constexpr int kStringReservedName = 802;
inline constexpr int kStringAttachmentNoDefault = 803;  // a warning: the file is stored
inline constexpr int kStringCopyFailed = 804;
inline constexpr int kStringNoCommand = 806;
inline constexpr int kStringCoverTooLarge = 809;  // formatted with the limit in bytes
inline constexpr int kStringCoverNotRtf = 810;
inline constexpr int kStringTemplateTooLarge = 811;  // formatted with the limit in bytes
inline constexpr int kStringTemplateNotRtf = 812;
inline constexpr int kStringAttachmentTooLarge = 813;  // formatted with the limit in bytes
inline constexpr int kStringAttachmentNotFax = 814;
inline constexpr int kStringTooManyCovers = 815;       // formatted with MaxFiles
inline constexpr int kStringTooManyTemplates = 816;    // formatted with MaxFiles
inline constexpr int kStringTooManyAttachments = 817;  // formatted with MaxFiles
inline constexpr int kStringUnknownSecondPart = 818;   // formatted with the second part
inline constexpr int kStringSecondFileAttached = 820;
inline constexpr int kStringDeleteWithFile = 821;
inline constexpr int kStringNoSuchSavedFile = 822;
inline constexpr int kStringCoverNotDeletable = 823;
inline constexpr int kStringTemplateNotDeletable = 824;
inline constexpr int kStringTooManyParts = 825;

// True when `text` begins with `word` in any letter case.
bool BeginsWithWord(std::string_view text, std::string_view word);

// Entry `number` of the message's attachments counted from 1; empty (no file) for 0 and for a
// number beyond the message's attachments.
std::string_view MessageAttachment(const AttachmentTable &attachments, int number);

// The command's kind and name when the part begins with "C=", "COVERPAGE=", "T=", "TEMPLATE=",
// "A=" or "ATTACHMENT=" in any letter case; the name is everything after the "=".
struct SavedFileTarget {
  SavedFileKind kind;
  std::string_view name;
};
std::optional<SavedFileTarget> ParseSavedFileTarget(std::string_view part);

// The command up to its first NUL, CR or LF and cut to kMaxCommandText, without trailing blanks
// or blanks around "=" and ",", split at its commas into at most kMaxCommandParts parts.
std::vector<std::string> SplitCommand(std::string_view commandText);

// Runs one command with the message's first and second attachments (empty: none); the
// message-text file is the defaults block of a "defaults" command. 0 or -1.
int RunAdminCommand(std::string_view user, std::string_view commandText, std::string_view messageTextFile,
                    std::string_view firstAttachment, std::string_view secondAttachment,
                    std::string &errorText, std::size_t size);

// Stores or deletes one saved file. A store copies the attached file into the cover or the
// attachment directory under a new name before it enters the database; when the database
// refuses the name, the copy is deleted again. 0 or -1; a store as default of an attachment
// succeeds with text 803.
int SavedFileCommand(std::string_view user, std::span<const std::string> parts,
                     std::string_view firstAttachment, std::string_view secondAttachment,
                     std::string &errorText, std::size_t size);

}  // namespace tqv
