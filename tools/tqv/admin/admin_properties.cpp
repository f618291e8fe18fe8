// Flag names of the user properties; see admin_properties.h. An unknown name refuses the whole
// list, so a typing error never half-changes a user.
#include "tqv/admin/admin_properties.h"

#include <charconv>
#include <cstdio>

#include "config/numbered_list.h"
#include "config/user_properties.h"

namespace tqv::tool {

namespace {

struct NamedProperty {
  std::string_view name;
  UserProperty bit;
};

constexpr NamedProperty kNamedProperties[] = {
    {"SendFaxes", UserProperty::SendFaxes},
    {"ReceiveUnrouted", UserProperty::ReceiveUnrouted},
    {"ReceiveRouted", UserProperty::ReceiveRouted},
    {"OwnFaxHeader", UserProperty::OwnFaxHeader},
    {"HighResolution", UserProperty::HighResolution},
    {"BlockNumbers", UserProperty::BlockNumbers},
    {"LearnCsidRoute", UserProperty::LearnCsidRoute},
    {"RemoteAdministration", UserProperty::RemoteAdministration},
    {"OcrGroupRouting", UserProperty::OcrGroupRouting},
    {"AttachOnFailure", UserProperty::AttachOnFailure},
    {"AttachOnSuccess", UserProperty::AttachOnSuccess},
};

std::int32_t NamedBits() {
  std::int32_t bits = 0;
  for (const NamedProperty &property : kNamedProperties)
    bits |= static_cast<std::int32_t>(property.bit);
  return bits;
}

std::optional<std::int32_t> BitNamed(std::string_view name) {
  for (const NamedProperty &property : kNamedProperties)
    if (SameName(property.name, name)) return static_cast<std::int32_t>(property.bit);
  return std::nullopt;
}

std::optional<std::int32_t> WholeWord(std::string_view text) {
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    text.remove_prefix(2);
    base = 16;
  }
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return static_cast<std::int32_t>(value);
}

std::string_view Trimmed(std::string_view text) {
  const std::size_t start = text.find_first_not_of(' ');
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(' ') - start + 1);
}

}  // namespace

std::optional<std::int32_t> ApplyPropertyList(std::string_view list, std::int32_t current,
                                              std::string &error) {
  std::optional<std::int32_t> absolute;  // the named bits listed without a sign, or a whole word
  std::int32_t on = 0;
  std::int32_t off = 0;
  bool wholeWord = false;
  for (std::size_t start = 0; start <= list.size();) {
    std::size_t comma = list.find(',', start);
    if (comma == std::string_view::npos) comma = list.size();
    std::string_view item = Trimmed(list.substr(start, comma - start));
    start = comma + 1;
    if (item.empty()) continue;
    const char sign = item.front() == '+' || item.front() == '-' ? item.front() : '\0';
    if (sign != '\0') item.remove_prefix(1);
    if (sign == '\0') {
      if (const std::optional<std::int32_t> word = WholeWord(item)) {
        absolute = absolute.value_or(0) | *word;
        wholeWord = true;
        continue;
      }
    }
    const std::optional<std::int32_t> bit = BitNamed(item);
    if (!bit) {
      error = "unknown property '" + std::string(item) + "' (one of " + AllPropertyNames() + ")";
      return std::nullopt;
    }
    if (sign == '+') on |= *bit;
    if (sign == '-') off |= *bit;
    if (sign == '\0') absolute = absolute.value_or(0) | *bit;
  }
  // Names say nothing about the bits without a name, so those stay as they were; only signs
  // leave the whole word as it was.
  std::int32_t word = current;
  if (absolute)
    word = *absolute | (wholeWord ? 0 : current & ~NamedBits());
  else if ((on | off) == 0)
    word = current & ~NamedBits();
  return (word | on) & ~off;
}

std::vector<std::string> PropertyNames(std::int32_t properties) {
  std::vector<std::string> names;
  for (std::uint32_t bit = 1; bit != 0; bit <<= 1) {
    if ((static_cast<std::uint32_t>(properties) & bit) == 0) continue;
    std::string name;
    for (const NamedProperty &property : kNamedProperties)
      if (static_cast<std::uint32_t>(property.bit) == bit) name = property.name;
    if (name.empty()) {
      char hex[16];
      std::snprintf(hex, sizeof hex, "0x%X", static_cast<unsigned>(bit));
      name = hex;
    }
    names.push_back(name);
  }
  return names;
}

std::string PropertiesText(std::int32_t properties) {
  char head[40];
  std::snprintf(head, sizeof head, "%d (0x%X)", static_cast<int>(properties),
                static_cast<unsigned>(properties));
  std::string text = head;
  const std::vector<std::string> names = PropertyNames(properties);
  for (std::size_t i = 0; i < names.size(); ++i)
    text += (i == 0 ? ": " : ", ") + names[i];
  return text;
}

std::string AllPropertyNames() {
  std::string names;
  for (const NamedProperty &property : kNamedProperties) {
    if (!names.empty()) names += ", ";
    names += property.name;
  }
  return names;
}

}  // namespace tqv::tool
