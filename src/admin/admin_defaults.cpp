// The defaults block; see admin_defaults.h. The whole block is read and checked before any
// setting is applied, so a faulty line changes nothing.
#include "admin/admin_defaults.h"

#include <array>
#include <optional>

#include "admin/admin_error_text.h"
#include "admin/form_lines.h"
#include "common/string_editors.h"
#include "common/text_limits.h"
#include "config/numbered_list.h"
#include "config/saved_file_defaults.h"
#include "config/saved_files.h"
#include "config/user_details.h"
#include "config/user_properties.h"

namespace tqv {

namespace {

constexpr std::string_view kCommentMark = ";;";
constexpr std::string_view kResolutionWord = "RESOLUTION";

// The value each key was last given.
struct DefaultsValues {
  std::optional<std::string> cover;
  std::optional<std::string> templateName;
  std::optional<std::string> faxHeader;
  std::optional<std::string> resolution;
};

using DefaultsKey = std::optional<std::string> DefaultsValues::*;

struct KeyName {
  std::string_view text;
  DefaultsKey key;
};
constexpr std::array<KeyName, 9> kKeyNames = {{
    {"C", &DefaultsValues::cover},
    {"COVERPAGE", &DefaultsValues::cover},
    {"T", &DefaultsValues::templateName},
    {"TEMPLATE", &DefaultsValues::templateName},
    {"F", &DefaultsValues::faxHeader},
    {"FAXHEADER", &DefaultsValues::faxHeader},
    {"FAX HEADER", &DefaultsValues::faxHeader},
    {"R", &DefaultsValues::resolution},
    {"RESOLUTION", &DefaultsValues::resolution},
}};

std::optional<DefaultsKey> KeyOf(std::string_view name) {
  for (const KeyName &keyName : kKeyNames)
    if (SameName(name, keyName.text)) return keyName.key;
  return std::nullopt;
}

int ReadDefaultsBlock(std::string_view blockFile, DefaultsValues &values, std::string &errorText,
                      std::size_t size) {
  std::optional<TextLines> lines = TextLines::Open(blockFile);
  if (!lines) return 0;
  while (std::optional<std::string> line = lines->Read(kFormLineSize)) {
    TrimRight(*line);
    SqueezeAround(*line, '=');
    SqueezeAround(*line, ',');
    if (IsBlankLine(*line) || line->starts_with(kCommentMark)) continue;
    const std::size_t equals = line->find('=');
    if (equals == std::string::npos) return FailWithText(errorText, size, *line);
    const std::string_view name = std::string_view(*line).substr(0, equals);
    const std::optional<DefaultsKey> key = KeyOf(name);
    if (!key) return FailWithText(errorText, size, name);
    std::string value = line->substr(equals + 1);
    values.*(*key) = CutText(value, kMaxDefaultsValue);
  }
  return 0;
}

}  // namespace

int DefaultsCommand(std::string_view user, std::string_view blockFile, std::string_view firstAttachment,
                    std::string &errorText, std::size_t size) {
  if (!firstAttachment.empty()) return FailWithString(errorText, size, kStringDefaultsWithFile);
  DefaultsValues values;
  if (ReadDefaultsBlock(blockFile, values, errorText, size) != 0) return -1;

  int result = 0;
  if (values.cover && ApplyDefaultCover(user, *values.cover, errorText, size) != 0) result = -1;
  std::string message;
  if (values.templateName && ApplyDefaultTemplate(user, *values.templateName, message, size) != 0) {
    AppendErrorLine(errorText, size, message);
    result = -1;
  }
  if (values.faxHeader) ApplyFaxHeader(user, *values.faxHeader);
  if (values.resolution && ApplyResolution(user, *values.resolution, message, size) != 0) {
    AppendErrorLine(errorText, size, message);
    result = -1;
  }
  return result;
}

int ApplyDefaultCover(std::string_view user, std::string_view name, std::string &errorText,
                      std::size_t size) {
  if (!SetDefaultCover(user, name)) return FailWithString(errorText, size, kStringNoSuchCover, name);
  return 0;
}

int ApplyDefaultTemplate(std::string_view user, std::string_view name, std::string &errorText,
                         std::size_t size) {
  if (!SetDefaultTemplate(user, name.empty() ? kReservedTemplateName : name))
    return FailWithString(errorText, size, kStringNoSuchTemplate, name);
  return 0;
}

int ApplyFaxHeader(std::string_view user, std::string_view text) {
  SetUserFaxHeader(user, text);
  return 0;
}

int ApplyResolution(std::string_view user, std::string_view value, std::string &errorText, std::size_t size) {
  const bool normal = SameName(value, "n") || SameName(value, "normal");
  const bool high = SameName(value, "h") || SameName(value, "high");
  if (!normal && !high)
    return FailWithText(
        errorText, size,
        std::string(kResolutionWord) + "=#" + std::string(value.substr(0, kShownResolutionValue)) + "#");
  SetUserProperties(user, WithProperty(GetUserProperties(user), UserProperty::HighResolution, high));
  return 0;
}

}  // namespace tqv
