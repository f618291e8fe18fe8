// The in-process recorder of reported events that tests set, beside the system's own log. Like the
// other test hooks of the platform layer it is set and called from one thread.
#include <utility>

#include "platform/event_log.h"

namespace tqv::platform {

namespace {

EventRecorder &Recorder() {
  static EventRecorder recorder;
  return recorder;
}

}  // namespace

void SetEventRecorder(EventRecorder recorder) {
  Recorder() = std::move(recorder);
}

void RecordEvent(std::uint16_t type, std::string_view source, std::string_view message) {
  if (Recorder()) Recorder()(type, source, message);
}

}  // namespace tqv::platform
