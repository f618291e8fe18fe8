// Failed consistency checks: logged, signalled with four beeps, then ignored. It never stops the
// program and cannot fail beyond what logging loses.
#include "diag/check_assertion.h"

#include <cstdio>

#include "diag/log_message.h"
#include "platform/beep_and_sleep.h"
#include "platform/event_log.h"

namespace tqv {

namespace {

constexpr int kBeepCount = 4;
constexpr std::uint32_t kBeepPauseMilliseconds = 500;

}  // namespace

void CheckAssertion(bool condition, const char *sourceFile, std::int32_t line) {
  if (condition) return;
  // Formatted here and passed as data, so a "%" in a file name cannot act as a conversion.
  char text[kMaxEventMessage + 1];
  std::snprintf(text, sizeof text, "Assertion failed: '%s', line %ld",
                sourceFile != nullptr ? sourceFile : "", static_cast<long>(line));
  LogMessage(nullptr, kAssertionEventSource, platform::kEventError, "%s", text);
  for (int i = 0; i < kBeepCount; ++i) {
    platform::Beep();
    platform::SleepMilliseconds(kBeepPauseMilliseconds);
  }
}

}  // namespace tqv
