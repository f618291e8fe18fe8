// The users a received fax goes to. See recipient_list.h.
#include "incoming/recipient_list.h"

#include <algorithm>

#include "common/text_limits.h"

namespace tqv {

void RecipientList::Add(std::string_view name) {
  if (name.empty() || names_.size() >= kMaxRecipients) return;
  std::string copy(name);
  CutText(copy, kMaxName);
  if (Contains(copy)) return;
  names_.push_back(std::move(copy));
}

bool RecipientList::Contains(std::string_view name) const {
  return std::find(names_.begin(), names_.end(), name) != names_.end();
}

std::optional<std::string> RecipientList::First() {
  cursor_ = 0;
  return Next();
}

std::optional<std::string> RecipientList::Next() {
  if (cursor_ >= names_.size()) return std::nullopt;
  return names_[cursor_++];
}

}  // namespace tqv
