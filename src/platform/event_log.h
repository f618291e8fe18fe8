// The operating system's application event log.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace tqv::platform {

inline constexpr std::uint16_t kEventError = 1;
inline constexpr std::uint16_t kEventWarning = 2;
inline constexpr std::uint16_t kEventInformation = 4;

// Reports one event under `source`. With a module handle, a source that is not yet registered is
// registered for that module first. Failures lose the event silently.
void ReportEventToLog(const void *module, std::string_view source, std::uint16_t type,
                      std::string_view message);

// Hands every event ReportEventToLog is given to `recorder` as well, on either backend, so tests
// read events back where the system's own log cannot be read. It outlives
// ResetPlatformStateForTesting, which tests also call midway; an empty function ends it.
using EventRecorder =
    std::function<void(std::uint16_t type, std::string_view source, std::string_view message)>;
void SetEventRecorder(EventRecorder recorder);

// Called by the backends once per event, before the system's log sees it.
void RecordEvent(std::uint16_t type, std::string_view source, std::string_view message);

}  // namespace tqv::platform
