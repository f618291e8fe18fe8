// Option lines; see option_lines.h. The setup file is read whole and cut into the pieces a line
// reader with a 254-character limit would give; every failure is told through the error text.
#include "outgoing/option_lines.h"

#include <algorithm>
#include <ctime>
#include <optional>

#include "common/file_extension.h"
#include "common/number_text.h"
#include "common/path_helpers.h"
#include "common/string_editors.h"
#include "common/unique_name.h"
#include "config/message_strings.h"
#include "config/numbered_list.h"
#include "config/saved_files.h"
#include "config/service_state.h"
#include "config/string_formatting.h"
#include "platform/clock.h"
#include "platform/file.h"
#include "platform/file_system.h"
#include "platform/text_mode.h"

namespace tqv {

namespace {

constexpr std::string_view kOptionMark = "::";
constexpr std::string_view kNumberCharacters = "0123456789+-,() ";
// A segment is judged a number text on this many characters.
constexpr std::size_t kNumberTextLimit = 255;
constexpr std::size_t kMaxSendTimeToken = 5;
constexpr std::size_t kBillingTokenLimit = 9;
constexpr std::int64_t kSecondsPerDay = 86400;

int Fail(std::string &errorText, int number) {
  errorText = GetString(number);
  CutText(errorText, kMaxErrorText);
  return -1;
}

int Fail(std::string &errorText, int number, const FormatValue &value) {
  errorText = FormatWithValue(GetString(number), value, kMaxErrorText);
  return -1;
}

bool StartsWithName(std::string_view token, std::string_view prefix) {
  return token.size() >= prefix.size() && SameName(token.substr(0, prefix.size()), prefix);
}

// The text after the first '=' of a token that begins with one of the two prefixes, in any case.
std::optional<std::string_view> ValueAfter(std::string_view token, std::string_view shortPrefix,
                                           std::string_view longPrefix) {
  if (!StartsWithName(token, shortPrefix) && !StartsWithName(token, longPrefix)) return std::nullopt;
  return token.substr(token.find('=') + 1);
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Pieces as a line reader with kOptionLineLimit characters of room gives them: up to and with the
// line feed, or the limit; a NUL ends a piece's text as it ends any text of a fixed buffer.
std::vector<std::string> ReadPieces(std::string_view text) {
  std::vector<std::string> pieces;
  for (std::size_t start = 0; start < text.size();) {
    std::size_t end = std::min(text.find('\n', start), text.size() - 1) + 1;
    end = std::min(end, start + kOptionLineLimit);
    std::string piece(text.substr(start, end - start));
    piece.resize(std::min(piece.find('\0'), piece.size()));
    pieces.push_back(std::move(piece));
    start = end;
  }
  return pieces;
}

}  // namespace

int ReadOptionLines(std::string_view user, std::string_view setupPath, RecipientTable &recipients,
                    std::size_t recipientLimit, AttachmentTable &attachments, std::size_t attachmentLimit,
                    FaxOptions &options, std::string &errorText) {
  std::optional<platform::File> file = platform::File::OpenShared(setupPath);
  std::optional<std::string> bytes;
  if (file) bytes = file->ReadAll();
  file.reset();
  if (!bytes) return Fail(errorText, kStringSetupUnreadable);

  bool optionsLineRead = false;
  for (std::string &line : ReadPieces(platform::FromTextMode(*bytes))) {
    TrimRight(line);
    SqueezeAround(line, '=');
    SqueezeAround(line, ',');
    if (!line.starts_with(kOptionMark)) return Fail(errorText, kStringNotAnOptionLine);

    const std::size_t start = std::min(line.find_first_not_of(' ', kOptionMark.size()), line.size());
    const std::vector<std::string> tokens =
        SplitOptionTokens(std::string_view(line).substr(start), kOptionTokenLimit);
    if (IsRecipientLine(tokens)) {
      if (AddOptionRecipient(tokens, recipients, recipientLimit, errorText) != 0) return -1;
      continue;
    }
    if (optionsLineRead) return Fail(errorText, kStringSecondOptionsLine);
    optionsLineRead = true;
    if (ApplyOptions(user, tokens, attachments, attachmentLimit, options, errorText) != 0) return -1;
  }
  return 0;
}

std::vector<std::string> SplitOptionTokens(std::string_view text, std::size_t tokenLimit) {
  // First every comma becomes a separator, unless it stands between two number texts.
  std::string marked(text);
  bool previousIsNumber = false;
  std::size_t previousComma = std::string::npos;
  for (std::size_t segmentStart = 0;;) {
    const std::size_t comma = marked.find(',', segmentStart);
    const std::size_t segmentEnd = comma == std::string::npos ? marked.size() : comma;
    const bool isNumber = IsNumberText(
        std::string_view(marked).substr(segmentStart, segmentEnd - segmentStart).substr(0, kNumberTextLimit));
    if (comma != std::string::npos) marked[comma] = ';';
    if (previousIsNumber && isNumber) marked[previousComma] = ',';
    if (comma == std::string::npos) break;
    previousIsNumber = isNumber;
    previousComma = comma;
    segmentStart = comma + 1;
  }

  // A separator is searched from a token's second character, so one directly after another stays
  // at the start of the next token.
  std::vector<std::string> tokens;
  std::size_t start = std::min(marked.find_first_not_of(' '), marked.size());
  while (true) {
    const std::size_t separator = start + 1 < marked.size() ? marked.find(';', start + 1) : std::string::npos;
    if (separator == std::string::npos || tokens.size() + 1 >= tokenLimit) {
      tokens.push_back(marked.substr(start));
      return tokens;
    }
    tokens.push_back(marked.substr(start, separator - start));
    start = std::min(marked.find_first_not_of(' ', separator + 1), marked.size());
  }
}

bool IsNumberText(std::string_view text) {
  return !text.empty() && text.find_first_not_of(kNumberCharacters) == std::string_view::npos;
}

bool IsRecipientLine(const std::vector<std::string> &tokens) {
  return !tokens.empty() && tokens.size() <= 3 && IsNumberText(tokens.back());
}

int AddOptionRecipient(const std::vector<std::string> &tokens, RecipientTable &recipients,
                       std::size_t recipientLimit, std::string &errorText) {
  if (recipients.size() >= recipientLimit)
    return Fail(errorText, kStringTooManyRecipients, static_cast<std::int64_t>(recipientLimit));

  RecipientEntry entry;
  if (tokens.size() == 1) {
    entry.name = tokens[0];
    entry.address = tokens[0];
  } else if (tokens.size() == 2) {
    entry.name = tokens[0];
    entry.address = tokens[1];
  } else if (tokens.size() >= 3) {
    entry.name = tokens[0];
    entry.company = tokens[1];
    entry.address = tokens[2];
  }
  CutText(entry.name, kMaxRecipientName);
  CutText(entry.address, kMaxRecipientAddress);
  CutText(entry.company, kMaxRecipientCompany);

  // "::Sales,0" names the message's own first recipient instead of adding one.
  if (entry.address == "0") {
    if (!recipients.empty()) {
      if (!entry.name.empty()) recipients.front().name = entry.name;
      if (!entry.company.empty()) recipients.front().company = entry.company;
    }
    return 0;
  }
  recipients.push_back(std::move(entry));
  return 0;
}

int ApplyOptions(std::string_view user, const std::vector<std::string> &tokens, AttachmentTable &attachments,
                 std::size_t attachmentLimit, FaxOptions &options, std::string &errorText) {
  int result = 0;
  for (const std::string &token : tokens) {
    std::int32_t number = 0;
    if (ParseSendTime(token, number)) {
      options.sendTime = number;
    } else if (SameName(token, "h") || SameName(token, "high")) {
      options.fineResolution = 1;
    } else if (token == "n" || token == "normal") {
      options.fineResolution = 0;
    } else if (token == "s" || token == "skipqueue") {
      options.skipQueue = 1;
    } else if (const auto cover = ValueAfter(token, "C=", "COVERPAGE=")) {
      options.coverPageName = *cover;
      CutText(options.coverPageName, kMaxOptionName);
    } else if (const auto templateName = ValueAfter(token, "T=", "TEMPLATE=")) {
      options.templateName = *templateName;
      CutText(options.templateName, kMaxOptionName);
    } else if (const auto attachment = ValueAfter(token, "A=", "ATTACHMENT=")) {
      if (AddSavedAttachment(user, *attachment, attachments, attachmentLimit, errorText) != 0) result = -1;
    } else if (ParseBillingCode(token, number)) {
      options.billingNumber = number;
    } else {
      result = Fail(errorText, kStringUnknownOption, std::string_view(token));
    }
  }
  return result;
}

bool ParseSendTime(std::string_view token, std::int32_t &sendTime) {
  const std::size_t colon = token.find(':');
  if (token.size() > kMaxSendTimeToken || colon == std::string_view::npos || colon < 1 || colon > 2 ||
      token.size() - colon - 1 != 2)
    return false;
  for (std::size_t i = 0; i < token.size(); ++i)
    if (i != colon && !IsDigit(token[i])) return false;
  const int hour = ParseLong(token.substr(0, colon));
  const int minute = ParseLong(token.substr(colon + 1));

  std::tm moment = platform::LocalTime(platform::CurrentTime());
  const bool passed = moment.tm_hour > hour || (moment.tm_hour == hour && moment.tm_min > minute);
  moment.tm_hour = hour;
  moment.tm_min = minute;
  std::int64_t time = std::mktime(&moment);
  if (passed) time += kSecondsPerDay;
  sendTime = static_cast<std::int32_t>(time);
  return true;
}

bool ParseBillingCode(std::string_view token, std::int32_t &billingNumber) {
  if (token.empty() || (token[0] != 'b' && token[0] != 'B') || token.size() >= kBillingTokenLimit)
    return false;
  const std::int32_t number = ParseLong(token.substr(1));
  if (number == 0) return false;
  billingNumber = number;
  return true;
}

int AddSavedAttachment(std::string_view user, std::string_view name, AttachmentTable &attachments,
                       std::size_t attachmentLimit, std::string &errorText) {
  if (attachments.size() >= attachmentLimit)
    return Fail(errorText, kStringTooManyDocuments, static_cast<std::int64_t>(attachmentLimit));
  const std::optional<std::string> stored = FindAttachment(user, name, kSavedAttachmentPathSize);
  if (!stored) return Fail(errorText, kStringNoSuchAttachment, name);
  if (!FileExists(*stored)) return Fail(errorText, kStringAttachmentMissing, name);

  // A dot in a directory name must not give the copy a path for its extension.
  std::string copy = MakeUniqueName(CurrentService().workDirectory, SafeExtensionOf(*stored));
  // As with every document copy, a failed copy shows later as a missing document, not here.
  platform::CopyFileTo(*stored, copy, false);
  attachments.push_back(CutText(copy, kMaxAttachmentPath));
  return 0;
}

}  // namespace tqv
