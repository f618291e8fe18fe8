// Counter behind the fault-injection seam. Backends ask it once per file operation.
#include "platform/fault_injection.h"

#include "platform/platform_state_internal.h"

namespace tqv::platform {

namespace {

struct FaultState {
  std::uint64_t count = 0;
  std::uint64_t first = 0;  // 0: nothing armed
  std::uint64_t last = 0;
};

FaultState &State() {
  static FaultState state;
  return state;
}

}  // namespace

void FailFileOperations(std::uint64_t first, std::uint64_t count) {
  State() = FaultState{0, first, count == 0 ? 0 : first + count - 1};
  if (count == 0) State().first = 0;
}

std::uint64_t FileOperationCount() {
  return State().count;
}

bool FileOperationMustFail() {
  FaultState &state = State();
  ++state.count;
  return state.first != 0 && state.count >= state.first && state.count <= state.last;
}

void ResetFaultInjection() {
  State() = FaultState{};
}

}  // namespace tqv::platform
