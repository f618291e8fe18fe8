// The ten entry points of the library as the core implements them; the exported C functions only
// forward here. Each result is what the exported function returns to the host.
#pragma once

#include <cstdint>

namespace tqv::host {

int Initialise(std::int32_t textFileFlag, const char *textFileDir);
int Shutdown();
int GetNumUsers(std::uint32_t *count);
int FaxPending(void *job);
int FaxSent(void *job);
int CreateReceiveFaxFile(void *receive);
int FaxReceived(void *receive);
int Scan(std::int32_t dueJobsFlag, void *job);
int ScannedEventAccepted(void *job);
int JfaxReady(void *job);

// Tick count of the last conversion pass; 0 before the first.
std::uint32_t LastConversionPassTick();
void ResetScanLoopForTesting();

// Puts every piece of process-wide state of the library back as it is at load.
void ResetLibraryStateForTesting();

}  // namespace tqv::host
