// Conversion and checks of values for tqvadmin.ini; see admin_text.h. The profile rules decide
// what reads back: blanks around a value are trimmed, one pair of quotes is removed, and a key
// cannot hold "=" or begin with "[" or ";".
#include "tqv/admin/admin_text.h"

#include "common/text_limits.h"
#include "tqv/shared/display_text.h"

namespace tqv::tool {

namespace {

// The code point of the UTF-8 sequence at `position`, which moves past it; nullopt when the
// bytes there are not UTF-8.
std::optional<char32_t> NextCodePoint(std::string_view text, std::size_t &position) {
  const auto lead = static_cast<unsigned char>(text[position++]);
  if (lead < 0x80) return lead;
  std::size_t length = 0;
  char32_t code = 0;
  if ((lead & 0xE0) == 0xC0) {
    length = 1;
    code = lead & 0x1F;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 2;
    code = lead & 0x0F;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 3;
    code = lead & 0x07;
  } else {
    return std::nullopt;
  }
  for (; length > 0; --length) {
    if (position >= text.size()) return std::nullopt;
    const auto next = static_cast<unsigned char>(text[position++]);
    if ((next & 0xC0) != 0x80) return std::nullopt;
    code = (code << 6) | (next & 0x3F);
  }
  return code < 0x80 ? std::nullopt : std::optional<char32_t>(code);  // overlong forms are not UTF-8
}

std::optional<char> Windows1252Byte(char32_t code) {
  for (unsigned byte = 0; byte < 0x100; ++byte)
    if (Windows1252CodePoint(static_cast<unsigned char>(byte)) == code) return static_cast<char>(byte);
  return std::nullopt;
}

bool HasControl(std::string_view text) {
  for (char c : text)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) return true;
  return false;
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

}  // namespace

std::optional<std::string> DatabaseText(std::string_view argument) {
  std::string converted;
  for (std::size_t position = 0; position < argument.size();) {
    const std::optional<char32_t> code = NextCodePoint(argument, position);
    if (!code) return std::string(argument);
    const std::optional<char> byte = Windows1252Byte(*code);
    if (!byte) return std::nullopt;
    converted += *byte;
  }
  return converted;
}

std::string UserNameProblem(std::string_view name) {
  if (name.empty()) return "a user name cannot be empty";
  if (name.size() > kMaxName) return "a user name has at most " + std::to_string(kMaxName) + " characters";
  if (name.find_first_of("=,") != std::string_view::npos)
    return "a user name cannot hold '=' or ',' (they end keys and routing fields)";
  if (name.front() == '[' || name.front() == ';') return "a user name cannot begin with '[' or ';'";
  if (IsBlank(name.front()) || IsBlank(name.back())) return "a user name cannot begin or end with a blank";
  if (HasControl(name)) return "a user name cannot hold control characters";
  return {};
}

std::string ValueProblem(std::string_view value, std::size_t maxChars) {
  if (value.size() > maxChars) return "at most " + std::to_string(maxChars) + " characters are kept";
  if (HasControl(value)) return "control characters and line breaks cannot be stored";
  if (!value.empty() && (IsBlank(value.front()) || IsBlank(value.back())))
    return "blanks at either end would be lost";
  if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
    return "surrounding quotes would be lost";
  return {};
}

}  // namespace tqv::tool
