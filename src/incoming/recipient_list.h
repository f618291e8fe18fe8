// The users a received fax goes to: names in the order they were first added, each once, compared
// exactly. Adding never fails loudly: empty names, repeats and names past the limit are ignored.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tqv {

class RecipientList {
 public:
  // At most this many names, each cut to kMaxName characters.
  static constexpr std::size_t kMaxRecipients = 1024;

  void Add(std::string_view name);
  bool Contains(std::string_view name) const;
  std::size_t Count() const { return names_.size(); }

  // First() restarts the walk and gives the first name; Next() gives the one after the last
  // given, or nothing after the end.
  std::optional<std::string> First();
  std::optional<std::string> Next();

 private:
  std::vector<std::string> names_;
  std::size_t cursor_ = 0;
};

}  // namespace tqv
