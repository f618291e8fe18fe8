// The library as a fax service sees it: a file loaded at run time and its ten entry points. Loading
// fails with a one-line reason when the file cannot be loaded or lacks any entry point.
#pragma once

#include <optional>
#include <string>

#include "tqvspool.h"

namespace tqv::tool {

// The ten entry points, resolved by name. Tests fill one with functions of their own.
struct EntryPoints {
  decltype(&S_Initialise) initialise = nullptr;
  decltype(&S_Shutdown) shutdown = nullptr;
  decltype(&S_GetNumUsers) getNumUsers = nullptr;
  decltype(&S_FaxPending) faxPending = nullptr;
  decltype(&S_FaxSent) faxSent = nullptr;
  decltype(&S_CreateReceiveFaxFile) createReceiveFaxFile = nullptr;
  decltype(&S_FaxReceived) faxReceived = nullptr;
  decltype(&S_Scan) scan = nullptr;
  decltype(&S_ScannedEventAccepted) scannedEventAccepted = nullptr;
  decltype(&S_JfaxReady) jfaxReady = nullptr;
};

// A loaded library; unloaded when the object goes.
class HostLibrary {
 public:
  // nullopt with the reason in `error` when the file cannot be loaded or lacks an entry point
  // (all missing names are given).
  static std::optional<HostLibrary> Load(const std::string &path, std::string &error);

  HostLibrary(HostLibrary &&other) noexcept;
  HostLibrary &operator=(HostLibrary &&other) noexcept;
  HostLibrary(const HostLibrary &) = delete;
  HostLibrary &operator=(const HostLibrary &) = delete;
  ~HostLibrary();

  const EntryPoints &Entries() const { return entries_; }

 private:
  HostLibrary(void *handle, const EntryPoints &entries) : handle_(handle), entries_(entries) {}

  void *handle_ = nullptr;
  EntryPoints entries_;
};

// libtqvspool.so in ../lib beside the directory of the running executable (on Windows TQVSPOOL.dll
// beside the executable), as the build and an installation lay them out; empty when the
// executable's own path cannot be found.
std::string DefaultLibraryPath();

}  // namespace tqv::tool
