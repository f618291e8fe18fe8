// The four routing rules; see inbound_routing.h. Each list of routing entries is read once per
// fax and stops at its first missing or malformed entry; later entries of that kind are not seen.
#include "incoming/inbound_routing.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "common/string_editors.h"
#include "common/text_limits.h"
#include "config/numbered_list.h"
#include "config/routing_entries.h"
#include "config/user_details.h"
#include "config/user_list.h"
#include "config/user_properties.h"
#include "incoming/ocr_matching.h"

namespace tqv {

namespace {

// Station identifiers and dialled digits compare in upper case without blanks.
std::string CompareForm(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return RemoveBlanks(text);
}

// Adds the user of every entry of the kind whose value, in compare form, equals `wanted`.
bool AddUsersOfEqualEntries(RouteKind kind, std::size_t valueSize, const std::string &wanted,
                            RecipientList &list) {
  bool matched = false;
  RouteEntry entry;
  for (int result = FirstRoute(kind, kRouteUserSize, valueSize, entry); result == kListEntry;
       result = NextRoute(kRouteUserSize, valueSize, entry)) {
    if (CompareForm(entry.value) != wanted) continue;
    list.Add(entry.user);
    matched = true;
  }
  EndRoutes();
  return matched;
}

bool RouteByStation(const ReceiveRecordView &receive, RecipientList &list) {
  std::string station = receive.Text(receive::RemoteId);
  station = CompareForm(CutText(station, kMaxStationIdChars));
  if (station.empty()) return false;
  return AddUsersOfEqualEntries(RouteKind::Csid, kCsidRouteValueSize, station, list);
}

// The digits are taken as received: a caller's blank is part of what was keyed.
bool RouteByDialledDigits(const ReceiveRecordView &receive, RecipientList &list) {
  const std::string digits = receive.Text(receive::DtmfDigits);
  if (digits.empty()) return false;
  return AddUsersOfEqualEntries(RouteKind::Dtmf, kDtmfRouteValueSize, digits, list);
}

using UserPhrases = std::unordered_map<std::string, std::vector<OcrWords>>;

// The phrases of every entry of the kind by user name, in entry order; entries without words
// take no place.
UserPhrases ReadPhrases(RouteKind kind) {
  UserPhrases phrases;
  RouteEntry entry;
  for (int result = FirstRoute(kind, kRouteUserSize, kOcrRouteValueSize, entry); result == kListEntry;
       result = NextRoute(kRouteUserSize, kOcrRouteValueSize, entry)) {
    OcrWords words = SplitOcrWords(entry.value, kMaxPhraseWords);
    if (words.empty()) continue;
    std::vector<OcrWords> &own = phrases[entry.user];
    if (own.size() < kMaxUserPhrases) own.push_back(std::move(words));
  }
  EndRoutes();
  return phrases;
}

const std::vector<OcrWords> *PhrasesOf(const UserPhrases &phrases, const std::string &user) {
  const auto found = phrases.find(user);
  return found == phrases.end() ? nullptr : &found->second;
}

// With group phrases, only a group phrase followed by a keyword phrase counts; a user with groups
// but no keywords never matches.
bool UserMatches(const std::vector<OcrWords> *groups, const std::vector<OcrWords> &keywords,
                 const std::vector<OcrWords> &lines, std::int32_t ratio) {
  static const std::vector<OcrWords> kNoGroup{OcrWords{}};
  const std::vector<OcrWords> &leads = groups != nullptr ? *groups : kNoGroup;
  for (const OcrWords &line : lines)
    for (const OcrWords &lead : leads)
      for (const OcrWords &words : keywords)
        if (PhraseMatches(lead, words, line, ratio)) return true;
  return false;
}

bool RouteByRecognisedText(const ReceiveRecordView &receive, RecipientList &list) {
  if (receive.Number(receive::OcrAvailable) == 0) return false;
  const std::optional<std::vector<OcrWords>> lines = ReadOcrTextLines(receive.Text(receive::OcrTextFile));
  if (!lines || lines->empty()) return false;

  const UserPhrases groups = ReadPhrases(RouteKind::OcrGroup);
  const UserPhrases keywords = ReadPhrases(RouteKind::OcrKeyword);
  bool matched = false;
  for (std::optional<std::string> user = FirstUser(); user; user = NextUser()) {
    // Without a keyword phrase a user cannot match, with or without groups.
    const std::vector<OcrWords> *ownKeywords = PhrasesOf(keywords, *user);
    if (ownKeywords == nullptr) continue;
    const bool useGroups = HasProperty(GetUserProperties(*user), UserProperty::OcrGroupRouting);
    if (!UserMatches(useGroups ? PhrasesOf(groups, *user) : nullptr, *ownKeywords, *lines,
                     GetOcrRatio(*user)))
      continue;
    list.Add(*user);
    matched = true;
  }
  EndUsers();
  return matched;
}

// ReceiveRouted widens ReceiveUnrouted to faxes that a rule already routed; alone it does nothing.
void AddDefaultRecipients(bool routed, RecipientList &list) {
  for (std::optional<std::string> user = FirstUser(); user; user = NextUser()) {
    const std::int32_t properties = GetUserProperties(*user);
    if (!HasProperty(properties, UserProperty::ReceiveUnrouted)) continue;
    if (!routed || HasProperty(properties, UserProperty::ReceiveRouted)) list.Add(*user);
  }
  EndUsers();
}

}  // namespace

void Route(const ReceiveRecordView &receive, RecipientList &list) {
  // Every rule runs, whatever the ones before found.
  const bool byStation = RouteByStation(receive, list);
  const bool byDigits = RouteByDialledDigits(receive, list);
  const bool byText = RouteByRecognisedText(receive, list);
  AddDefaultRecipients(byStation || byDigits || byText, list);
}

}  // namespace tqv
