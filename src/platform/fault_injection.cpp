// Counter behind the fault-injection seam. Backends ask it once per file operation.
#include "platform/fault_injection.h"

#include <atomic>

#include "platform/platform_state_internal.h"

namespace tqv::platform {

namespace {

// The count is atomic so that a test may open files from a second thread; arming is done while
// no other thread touches files.
struct FaultState {
  std::atomic<std::uint64_t> count{0};
  std::uint64_t first = 0;  // 0: nothing armed
  std::uint64_t last = 0;
};

FaultState &State() {
  static FaultState state;
  return state;
}

void Arm(std::uint64_t first, std::uint64_t last) {
  FaultState &state = State();
  state.count = 0;
  state.first = first;
  state.last = last;
}

}  // namespace

void FailFileOperations(std::uint64_t first, std::uint64_t count) {
  if (count == 0)
    Arm(0, 0);
  else
    Arm(first, first + count - 1);
}

std::uint64_t FileOperationCount() {
  return State().count;
}

bool FileOperationMustFail() {
  FaultState &state = State();
  const std::uint64_t count = ++state.count;
  return state.first != 0 && count >= state.first && count <= state.last;
}

void ResetFaultInjection() {
  Arm(0, 0);
}

}  // namespace tqv::platform
