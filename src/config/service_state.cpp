// The one instance of the service state.
#include "config/service_state.h"

namespace tqv {

namespace {
ServiceState &Instance() {
  static ServiceState state;
  return state;
}
}  // namespace

ServiceState &CurrentService() {
  return Instance();
}

void ResetServiceStateForTesting() {
  Instance() = ServiceState{};
}

}  // namespace tqv
