// The exported C functions. They only forward to the core; nothing may escape into the host's
// process, so any exception ends the call with the function's failure result after one event.
#define TQVSPOOL_BUILDING
#include "tqvspool.h"

#include <exception>

#include "diag/log_message.h"
#include "host/entry_points.h"
#include "platform/event_log.h"
#include "platform/profile.h"

namespace {

template <typename Call>
int Guarded(const char *name, int failure, Call call) noexcept {
  try {
    // A call looks at each settings file once, however many values it reads.
    const tqv::platform::ProfileCallScope settingsAsAtTheCall;
    return call();
  } catch (const std::exception &error) {
    tqv::LogMessage(nullptr, tqv::kServiceEventSource, tqv::platform::kEventError, "%s failed: %s", name,
                    error.what());
  } catch (...) {
    tqv::LogMessage(nullptr, tqv::kServiceEventSource, tqv::platform::kEventError, "%s failed", name);
  }
  return failure;
}

}  // namespace

extern "C" {

TQVSPOOL_API int TQVSPOOL_CALL S_Initialise(int32_t textFileFlag, const char *textFileDir) {
  return Guarded("S_Initialise", -1, [&] { return tqv::host::Initialise(textFileFlag, textFileDir); });
}

TQVSPOOL_API int TQVSPOOL_CALL S_Shutdown(void) {
  return Guarded("S_Shutdown", 0, [] { return tqv::host::Shutdown(); });
}

TQVSPOOL_API int TQVSPOOL_CALL S_GetNumUsers(uint32_t *count) {
  return Guarded("S_GetNumUsers", 0, [&] { return tqv::host::GetNumUsers(count); });
}

TQVSPOOL_API int TQVSPOOL_CALL S_FaxPending(void *job) {
  return Guarded("S_FaxPending", -1, [&] { return tqv::host::FaxPending(job); });
}

TQVSPOOL_API int TQVSPOOL_CALL S_FaxSent(void *job) {
  return Guarded("S_FaxSent", 0, [&] { return tqv::host::FaxSent(job); });
}

TQVSPOOL_API int TQVSPOOL_CALL S_CreateReceiveFaxFile(void *receive) {
  return Guarded("S_CreateReceiveFaxFile", 0, [&] { return tqv::host::CreateReceiveFaxFile(receive); });
}

TQVSPOOL_API int TQVSPOOL_CALL S_FaxReceived(void *receive) {
  return Guarded("S_FaxReceived", 0, [&] { return tqv::host::FaxReceived(receive); });
}

TQVSPOOL_API int TQVSPOOL_CALL S_Scan(int32_t dueJobsFlag, void *job) {
  return Guarded("S_Scan", 0, [&] { return tqv::host::Scan(dueJobsFlag, job); });
}

TQVSPOOL_API int TQVSPOOL_CALL S_ScannedEventAccepted(void *job) {
  return Guarded("S_ScannedEventAccepted", 0, [&] { return tqv::host::ScannedEventAccepted(job); });
}

TQVSPOOL_API int TQVSPOOL_CALL S_JfaxReady(void *job) {
  return Guarded("S_JfaxReady", 0, [&] { return tqv::host::JfaxReady(job); });
}

}  // extern "C"
