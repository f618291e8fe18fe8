// The message counter: numbers for the gateway message files this system writes, kept in
// SGW_ID.INI in the product directory. It is read and written without a lock; a counter that
// cannot be written hands out the same number again.
#pragma once

#include <cstdint>

namespace tqv {

// Message numbers run from 0 to one below this and then start again at 0.
inline constexpr std::int32_t kMessageNumberLimit = 99999;

// The next message number; advances the counter. A missing, negative or unreadable counter
// counts as 0.
std::int32_t NextMessageId();

}  // namespace tqv
