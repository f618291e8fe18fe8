// Remote-administration commands; see admin_commands.h. Every check of a store runs before the
// file is copied, so a refused store leaves no file behind.
#include "admin/admin_commands.h"

#include <array>
#include <cstdint>

#include "admin/admin_defaults.h"
#include "admin/admin_error_text.h"
#include "common/file_extension.h"
#include "common/format_sniffers.h"
#include "common/path_helpers.h"
#include "common/string_editors.h"
#include "common/text_limits.h"
#include "common/unique_name.h"
#include "config/message_strings.h"
#include "config/numbered_list.h"
#include "config/saved_file_defaults.h"
#include "config/saved_files.h"
#include "config/service_state.h"
#include "platform/file_system.h"

namespace tqv {

namespace {

constexpr std::string_view kDeleteWord = "delete";
constexpr std::string_view kDefaultWord = "default";
// MaxSize counts thousands of bytes.
constexpr std::int64_t kBytesPerMaxSizeUnit = 1000;
// Extension of a stored cover page or template whose file has none; attachments get "FAX".
constexpr std::string_view kDocumentExtension = "RTF";

struct CommandPrefix {
  std::string_view text;
  SavedFileKind kind;
};
constexpr std::array<CommandPrefix, 6> kCommandPrefixes = {{
    {"C=", SavedFileKind::Coverpage},
    {"COVERPAGE=", SavedFileKind::Coverpage},
    {"T=", SavedFileKind::Template},
    {"TEMPLATE=", SavedFileKind::Template},
    {"A=", SavedFileKind::Fax},
    {"ATTACHMENT=", SavedFileKind::Fax},
}};

// What differs between the three kinds of saved files.
struct KindRules {
  std::string_view reservedName;  // empty: none
  int notDeletable;
  int tooMany;
  int tooLarge;
  int wrongFormat;
};

KindRules RulesOf(SavedFileKind kind) {
  switch (kind) {
    case SavedFileKind::Coverpage:
      return {kReservedCoverName, kStringCoverNotDeletable, kStringTooManyCovers, kStringCoverTooLarge,
              kStringCoverNotRtf};
    case SavedFileKind::Template:
      return {kReservedTemplateName, kStringTemplateNotDeletable, kStringTooManyTemplates,
              kStringTemplateTooLarge, kStringTemplateNotRtf};
    case SavedFileKind::Fax:
      break;
  }
  return {{}, 0, kStringTooManyAttachments, kStringAttachmentTooLarge, kStringAttachmentNotFax};
}

bool HasRightFormat(SavedFileKind kind, std::string_view path) {
  if (kind == SavedFileKind::Fax) return IsTiffFile(path) || IsStartFaxFile(path);
  return IsRtfFile(path);
}

int DeleteCommand(std::string_view user, const SavedFileTarget &target, std::string_view firstAttachment,
                  std::string &errorText, std::size_t size) {
  const KindRules rules = RulesOf(target.kind);
  if (!firstAttachment.empty()) return FailWithString(errorText, size, kStringDeleteWithFile);
  if (!rules.reservedName.empty() && SameName(target.name, rules.reservedName))
    return FailWithString(errorText, size, rules.notDeletable);
  if (DeleteSavedFile(target.kind, user, target.name) != 0)
    return FailWithString(errorText, size, kStringNoSuchSavedFile);

  // A default cover page that is gone selects nothing; templates fall back to the installation's.
  if (target.kind == SavedFileKind::Template) {
    SavedFile defaultTemplate;
    GetDefaultTemplate(user, kMaxName + 1, kMaxPath + 1, defaultTemplate);
    if (SameName(defaultTemplate.name, target.name)) SetDefaultTemplate(user, kReservedTemplateName);
  }
  return 0;
}

int StoreCommand(std::string_view user, const SavedFileTarget &target, bool makeDefault,
                 std::string_view firstAttachment, std::string_view secondAttachment, std::string &errorText,
                 std::size_t size) {
  const KindRules rules = RulesOf(target.kind);
  if (makeDefault && target.kind == SavedFileKind::Fax)
    errorText = LookupString(kStringAttachmentNoDefault, size);

  if (firstAttachment.empty()) return FailWithString(errorText, size, kStringNoFileAttached);
  if (!secondAttachment.empty()) return FailWithString(errorText, size, kStringSecondFileAttached);
  if (!FileExists(firstAttachment)) return FailWithString(errorText, size, kStringAttachedFileMissing);

  // Read now, not at start-up, so a changed limit holds from the next request on.
  const std::int32_t maxFiles = GetSavedMaxFiles(target.kind);
  if (CountSavedFiles(target.kind, user) >= maxFiles)
    return FailWithString(errorText, size, rules.tooMany, std::int64_t{maxFiles});
  const std::int64_t maxBytes = std::int64_t{GetSavedMaxSize(target.kind)} * kBytesPerMaxSizeUnit;
  if (GetFileSizeOf(firstAttachment) > maxBytes)
    return FailWithString(errorText, size, rules.tooLarge, maxBytes);
  if (GetSavedCheckFormat(target.kind) && !HasRightFormat(target.kind, firstAttachment))
    return FailWithString(errorText, size, rules.wrongFormat);

  const ServiceState &service = CurrentService();
  const bool isAttachment = target.kind == SavedFileKind::Fax;
  const std::string stored =
      MakeUniqueName(isAttachment ? service.attachmentDirectory : service.coverDirectory,
                     SafeExtensionOf(firstAttachment, isAttachment ? kDefaultExtension : kDocumentExtension));
  if (!platform::CopyFileTo(firstAttachment, stored, true))
    return FailWithString(errorText, size, kStringCopyFailed);
  if (AddSavedFile(target.kind, user, target.name, stored) != 0) {
    platform::RemoveFile(stored);
    return FailWithString(errorText, size, kStringReservedName);
  }

  if (makeDefault && target.kind == SavedFileKind::Coverpage) SetDefaultCover(user, target.name);
  if (makeDefault && target.kind == SavedFileKind::Template) SetDefaultTemplate(user, target.name);
  return 0;
}

}  // namespace

bool BeginsWithWord(std::string_view text, std::string_view word) {
  return text.size() >= word.size() && SameName(text.substr(0, word.size()), word);
}

std::string_view MessageAttachment(const AttachmentTable &attachments, int number) {
  if (number < 1 || static_cast<std::size_t>(number) > attachments.size()) return {};
  return attachments[static_cast<std::size_t>(number) - 1];
}

std::optional<SavedFileTarget> ParseSavedFileTarget(std::string_view part) {
  for (const CommandPrefix &prefix : kCommandPrefixes)
    if (BeginsWithWord(part, prefix.text))
      return SavedFileTarget{prefix.kind, part.substr(prefix.text.size())};
  return std::nullopt;
}

std::vector<std::string> SplitCommand(std::string_view commandText) {
  // A command ends where a value of the database ends, so a name is stored whole or not at all
  // and its entry keeps its path.
  std::string text(commandText.substr(0, commandText.find_first_of(std::string_view("\0\r\n", 3))));
  CutText(text, kMaxCommandText);
  TrimRight(text);
  SqueezeAround(text, '=');
  SqueezeAround(text, ',');

  std::vector<std::string> parts;
  for (std::size_t start = 0; parts.size() < kMaxCommandParts;) {
    start = std::min(text.find_first_not_of(" \t", start), text.size());
    const std::size_t comma = text.find(',', start);
    parts.push_back(text.substr(start, comma == std::string::npos ? std::string::npos : comma - start));
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  return parts;
}

int RunAdminCommand(std::string_view user, std::string_view commandText, std::string_view messageTextFile,
                    std::string_view firstAttachment, std::string_view secondAttachment,
                    std::string &errorText, std::size_t size) {
  const std::vector<std::string> parts = SplitCommand(commandText);
  if (ParseSavedFileTarget(parts.front()))
    return SavedFileCommand(user, parts, firstAttachment, secondAttachment, errorText, size);
  if (BeginsWithWord(parts.front(), kDefaultsCommandWord))
    return DefaultsCommand(user, messageTextFile, firstAttachment, errorText, size);
  return FailWithString(errorText, size, kStringNoCommand);
}

int SavedFileCommand(std::string_view user, std::span<const std::string> parts,
                     std::string_view firstAttachment, std::string_view secondAttachment,
                     std::string &errorText, std::size_t size) {
  if (parts.size() > 2) return FailWithString(errorText, size, kStringTooManyParts);
  const std::optional<SavedFileTarget> target = parts.empty() ? std::nullopt : ParseSavedFileTarget(parts[0]);
  if (!target) return FailWithString(errorText, size, kStringNoCommand);

  if (parts.size() == 2 && SameName(parts[1], kDeleteWord))
    return DeleteCommand(user, *target, firstAttachment, errorText, size);
  if (parts.size() == 2 && !SameName(parts[1], kDefaultWord))
    return FailWithString(errorText, size, kStringUnknownSecondPart, std::string_view(parts[1]));
  return StoreCommand(user, *target, parts.size() == 2, firstAttachment, secondAttachment, errorText, size);
}

}  // namespace tqv
