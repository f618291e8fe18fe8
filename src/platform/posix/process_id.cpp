// This process's id without a system call per temporary name: kept from the first ask and
// forgotten in the child of a fork, which would otherwise make its names under its parent's id.
#include "platform/posix/process_id.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>

namespace tqv::platform {

namespace {

std::atomic<int> knownId{0};

void ForgetInChild() {
  knownId.store(0, std::memory_order_relaxed);
}

}  // namespace

int CurrentProcessId() {
  int id = knownId.load(std::memory_order_relaxed);
  if (id != 0) return id;
  static const bool watching = ::pthread_atfork(nullptr, nullptr, ForgetInChild) == 0;
  id = static_cast<int>(::getpid());
  // Without the fork handler every call asks, as a forked child must not keep its parent's id.
  if (watching) knownId.store(id, std::memory_order_relaxed);
  return id;
}

}  // namespace tqv::platform
