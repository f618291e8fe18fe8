// Form mode; see admin_form.h. The form is read through once and its commands run only after
// that, so a faulty line further down keeps every command from running.
#include "admin/admin_form.h"

#include <array>
#include <cstdint>
#include <optional>

#include "admin/admin_commands.h"
#include "admin/admin_error_text.h"
#include "admin/form_lines.h"
#include "common/number_text.h"
#include "common/string_editors.h"
#include "common/text_limits.h"
#include "config/numbered_list.h"
#include "platform/file.h"
#include "platform/text_mode.h"

namespace tqv {

namespace {

constexpr char kKeywordEnd = ':';
// What the message-text file holds once the form has been read and no defaults block follows.
constexpr std::string_view kEmptiedText = " ";

// Keywords of the saved-file commands, in the order their commands run.
constexpr std::array<std::string_view, 3> kCommandKeywords = {"COVERPAGE", "TEMPLATE", "ATTACHMENT"};

struct FormCommand {
  bool given = false;
  std::int32_t attachmentNumber = 0;
  std::string text;
};

// A file that cannot be rewritten keeps what it held; the defaults command then reads that.
void RewriteText(std::string_view path, std::string_view text) {
  if (std::optional<platform::File> file = platform::File::CreateExclusive(path))
    file->Write(platform::ToTextMode(text));
}

// Every further piece of the file as read; nullopt when the block would reach the limit.
std::optional<std::string> CollectDefaultsBlock(TextLines &lines) {
  std::string block;
  while (const std::optional<std::string> piece = lines.Read(kFormLineSize)) {
    if (block.size() + piece->size() >= kDefaultsBlockLimit) return std::nullopt;
    block += *piece;
  }
  return block;
}

// Runs one command into the room behind what earlier commands left; true when it left a text.
bool RunBehind(std::string_view user, std::string_view commandText, std::string_view messageTextFile,
               std::string_view attachment, std::string &errorText, std::size_t size, int &result) {
  std::string ownText;
  const std::size_t room = size > errorText.size() ? size - errorText.size() : 0;
  result = RunAdminCommand(user, commandText, messageTextFile, attachment, {}, ownText, room);
  errorText += ownText;
  return !ownText.empty();
}

}  // namespace

int RunAdminForm(std::string_view user, std::string_view messageTextFile, const AttachmentTable &attachments,
                 std::string &errorText, std::size_t size) {
  std::optional<TextLines> lines = TextLines::Open(messageTextFile);
  if (!lines)
    return RunAdminCommand(user, kDefaultsCommandWord, messageTextFile, MessageAttachment(attachments, 1),
                           MessageAttachment(attachments, 2), errorText, size);

  std::array<FormCommand, kCommandKeywords.size()> commands;
  std::optional<std::string> defaultsBlock;
  for (std::optional<std::string> line = NextFormLine(*lines, kFormLineSize); line;
       line = NextFormLine(*lines, kFormLineSize)) {
    RemoveBlanks(*line);
    const std::size_t colon = line->find(kKeywordEnd);
    if (colon == std::string::npos) return FailWithText(errorText, size, *line);
    const std::string_view keyword = std::string_view(*line).substr(0, colon);
    const std::string_view value = std::string_view(*line).substr(colon + 1);

    FormCommand *command = nullptr;
    for (std::size_t i = 0; i < kCommandKeywords.size(); ++i)
      if (SameName(keyword, kCommandKeywords[i]) && !commands[i].given) command = &commands[i];
    if (command != nullptr) {
      command->given = true;
      command->attachmentNumber = ParseLong(value);
      const std::optional<std::string> commandText = NextFormLine(*lines, kFormLineSize);
      if (!commandText) break;
      command->text = *commandText;
    } else if (SameName(keyword, kDefaultsCommandWord)) {
      // Everything after it is the block, so it cannot come twice.
      defaultsBlock = CollectDefaultsBlock(*lines);
      break;
    } else {
      return FailWithText(errorText, size, keyword);
    }
  }
  lines.reset();
  RewriteText(messageTextFile, kEmptiedText);

  int result = 0;
  for (const FormCommand &command : commands) {
    if (!command.given || command.attachmentNumber < 0 || command.attachmentNumber > kHighestFormAttachment)
      continue;
    if (RunBehind(user, command.text, messageTextFile,
                  MessageAttachment(attachments, command.attachmentNumber), errorText, size, result)) {
      errorText += kErrorLineBreak;
      CutText(errorText, CharsInBuffer(size));
    }
  }
  if (defaultsBlock) {
    RewriteText(messageTextFile, *defaultsBlock);
    RunBehind(user, kDefaultsCommandWord, messageTextFile, {}, errorText, size, result);
  }
  return result;
}

}  // namespace tqv
