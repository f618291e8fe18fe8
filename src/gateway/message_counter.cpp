// The message counter in SGW_ID.INI [In] Id. Failures to write it go unnoticed, as the counter
// only keeps file names apart.
#include "gateway/message_counter.h"

#include <string>

#include "common/path_helpers.h"
#include "common/profile_helpers.h"
#include "config/settings_files.h"
#include "platform/profile.h"

namespace tqv {

namespace {

constexpr const char *kCounterFileName = "SGW_ID.INI";
constexpr const char *kCounterSection = "In";
constexpr const char *kCounterKey = "Id";

}  // namespace

std::int32_t NextMessageId() {
  std::string counterFile = GetProductDirectory();
  AppendBackslash(counterFile);
  counterFile += kCounterFileName;

  std::int32_t number = platform::ProfileReadInt(kCounterSection, kCounterKey, 0, counterFile);
  if (number < 0 || number >= kMessageNumberLimit) number = 0;
  WriteProfileInt(kCounterSection, kCounterKey, number + 1, counterFile);
  return number;
}

}  // namespace tqv
