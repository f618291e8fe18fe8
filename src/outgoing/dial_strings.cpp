// Dial strings and JFAX addresses; see dial_strings.h. Pure text rules apart from the settings
// read on every use ([JFAX Dial], [Intranet]); a missing setting gives its default.
#include "outgoing/dial_strings.h"

#include <algorithm>

#include "common/string_editors.h"
#include "common/text_limits.h"
#include "config/service_state.h"
#include "config/settings_files.h"

namespace tqv {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

bool HasSignificant(std::string_view text) {
  std::size_t position = 0;
  return NextSignificant(text, position) != '\0';
}

// A code as the rules compare it: its digits only.
std::string Digits(std::string_view code) {
  std::string digits(code);
  return DigitsOnly(digits);
}

// Fills the fields a display name has: "name.company.number", "name.number" or "number".
void SplitDisplayName(std::string_view display, char separator, std::string &number, std::string &name,
                      std::string &company) {
  const std::size_t first = separator == '\0' ? std::string_view::npos : display.find(separator);
  if (first == std::string_view::npos) {
    number = display;
  } else {
    name = display.substr(0, first);
    const std::size_t second = display.find(separator, first + 1);
    if (second == std::string_view::npos) {
      number = display.substr(first + 1);
    } else {
      company = display.substr(first + 1, second - first - 1);
      number = display.substr(second + 1);
    }
  }
  CutText(number, kMaxFaxNumber);
  CutText(name, kMaxAddressName);
  CutText(company, kMaxAddressCompany);
}

}  // namespace

bool IsSignificant(char c) {
  return (c >= '0' && c <= '9') || c == '(' || c == ')' || c == '+';
}

char NextSignificant(std::string_view text, std::size_t &position) {
  while (position < text.size() && !IsSignificant(text[position]))
    ++position;
  return position < text.size() ? text[position] : '\0';
}

void SkipSignificant(std::string_view text, std::size_t &position, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    NextSignificant(text, position);
    if (position >= text.size()) return;
    ++position;
  }
}

bool MatchSignificant(std::string_view a, std::string_view b, std::size_t count) {
  std::size_t positionA = 0;
  std::size_t positionB = 0;
  for (std::size_t matched = 0; matched < count; ++matched) {
    const char charA = NextSignificant(a, positionA);
    const char charB = NextSignificant(b, positionB);
    // Both ending together is agreement too: the end reads as '\0' on both sides.
    if (charA != charB || charA == '\0') return charA == charB;
    ++positionA;
    ++positionB;
  }
  return true;
}

std::string &DigitsOnly(std::string &text) {
  std::erase_if(text, [](char c) { return c < '0' || c > '9'; });
  return text;
}

void ExtractFaxNumber(std::string_view address, std::string &number, std::string &name,
                      std::string &company) {
  const std::size_t open = address.find('<');
  const std::size_t at = address.find('@');
  const std::size_t close = address.rfind('>');
  const bool displayNameForm = open != std::string_view::npos && at != std::string_view::npos && at > open &&
                               close != std::string_view::npos && close > at;
  if (!displayNameForm) {
    number = address.substr(0, at);
    CutText(number, kMaxFaxNumber);
    return;
  }

  std::size_t start = 0;
  while (start < open && IsBlank(address[start]))
    ++start;
  std::string display(address.substr(start, open - start));
  CutText(display, kMaxDisplayName);
  while (!display.empty() && IsBlank(display.back()))
    display.pop_back();
  // Mail systems cannot carry blanks in a display name, so users write a placeholder instead.
  const char placeholder = GetSpacePlaceholder();
  if (placeholder != '\0') std::replace(display.begin(), display.end(), placeholder, ' ');
  // Without a separator character the display name is not split: all of it is the number.
  SplitDisplayName(display, GetNameCompanyFaxSeparator(), number, name, company);
}

bool StripAreaCode(std::string &number, std::string_view areaCode) {
  const std::string area = Digits(areaCode);
  if (area.empty()) return false;
  std::size_t position = 0;
  if (NextSignificant(number, position) != '(') return false;
  ++position;
  if (!MatchSignificant(std::string_view(number).substr(position), area, area.size())) return false;
  SkipSignificant(number, position, area.size());
  if (NextSignificant(number, position) != ')') return false;
  number.erase(0, position + 1);
  return true;
}

void MakeDialString(std::string &number, std::size_t room, std::optional<std::string_view> prefix,
                    std::optional<std::string_view> countryCode, std::optional<std::string_view> areaCode) {
  const ServiceState &service = CurrentService();
  const std::string ownPrefix = Digits(prefix.value_or(service.internationalPrefix));
  const std::string ownCountry = Digits(countryCode.value_or(service.countryCode));
  const std::string ownArea = Digits(areaCode.value_or(service.areaCode));

  std::string result;
  std::size_t position = 0;
  if (!ownPrefix.empty() && NextSignificant(number, position) == '+') {
    ++position;
    const std::string_view afterPlus = std::string_view(number).substr(position);
    if (!ownCountry.empty() && MatchSignificant(afterPlus, ownCountry, ownCountry.size())) {
      SkipSignificant(number, position, ownCountry.size());
      result = number.substr(position);
      // Within country code 1 an area code is always dialled with the country code, unless it is ours.
      if (!StripAreaCode(result, ownArea) && ownCountry.front() == '1') result = afterPlus;
    } else {
      result = ownPrefix;
      result += afterPlus;
    }
  } else {
    result = number;
    StripAreaCode(result, ownArea);
  }
  number = std::move(result);
  CutText(number, CharsInBuffer(room));
}

void StripInternationalPrefix(std::string &number, std::optional<std::string_view> prefix) {
  const std::string ownPrefix = Digits(prefix.value_or(CurrentService().internationalPrefix));
  if (!ownPrefix.empty() && MatchSignificant(number, ownPrefix, ownPrefix.size())) {
    std::size_t position = 0;
    SkipSignificant(number, position, ownPrefix.size());
    number.erase(0, position);
  }
  DigitsOnly(number);
}

bool IsJfaxNumber(std::string_view number, std::string_view prefix) {
  // Both sides in the form a '+' becomes with our prefix, so "+44" and "0044" patterns meet.
  std::string dialled(number.substr(0, kMaxFaxNumber));
  MakeDialString(dialled, kDialStringRoom, prefix, "", "");
  bool matched = false;
  for (int index = 0; index < kJfaxPatternCount && !matched; ++index) {
    std::string pattern = GetJfaxDial(index, "");
    if (!HasSignificant(pattern)) return false;
    MakeDialString(pattern, kDialStringRoom, prefix, "", "");
    matched = HasSignificant(pattern) && MatchSignificant(pattern, dialled, pattern.size());
  }
  if (!matched) return false;
  StripInternationalPrefix(dialled, prefix);
  return !dialled.empty();
}

void MakeJfaxAddress(std::string &number, std::string_view prefix, std::size_t room) {
  StripInternationalPrefix(number, prefix);
  std::string domain = GetJfaxDomain();
  RemoveBlanks(domain);
  if (number.size() + domain.size() + 1 < room) {
    number += '@';
    number += domain;
  }
  CutText(number, CharsInBuffer(room));
}

}  // namespace tqv
