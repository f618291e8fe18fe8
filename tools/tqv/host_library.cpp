// Loading the library with dlopen and resolving its entry points with dlsym. A library that lacks
// any entry point is unloaded again and refused as a whole, so no half-resolved table escapes.
#include "tqv/host_library.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>
#include <utility>

namespace tqv::tool {

namespace {

constexpr const char *kLibraryFileName = "libtqvspool.so";

template <typename Function>
void Resolve(void *handle, const char *name, Function &target, std::string &missing) {
  target = reinterpret_cast<Function>(dlsym(handle, name));
  if (target) return;
  if (!missing.empty()) missing += ", ";
  missing += name;
}

}  // namespace

std::optional<HostLibrary> HostLibrary::Load(const std::string &path, std::string &error) {
  void *handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    const char *reason = dlerror();
    error = "cannot load the library: " + std::string(reason ? reason : path);
    return std::nullopt;
  }
  EntryPoints entries;
  std::string missing;
  Resolve(handle, "S_Initialise", entries.initialise, missing);
  Resolve(handle, "S_Shutdown", entries.shutdown, missing);
  Resolve(handle, "S_GetNumUsers", entries.getNumUsers, missing);
  Resolve(handle, "S_FaxPending", entries.faxPending, missing);
  Resolve(handle, "S_FaxSent", entries.faxSent, missing);
  Resolve(handle, "S_CreateReceiveFaxFile", entries.createReceiveFaxFile, missing);
  Resolve(handle, "S_FaxReceived", entries.faxReceived, missing);
  Resolve(handle, "S_Scan", entries.scan, missing);
  Resolve(handle, "S_ScannedEventAccepted", entries.scannedEventAccepted, missing);
  Resolve(handle, "S_JfaxReady", entries.jfaxReady, missing);
  if (!missing.empty()) {
    dlclose(handle);
    error = path + " is not a tqvspool library: no " + missing;
    return std::nullopt;
  }
  return HostLibrary(handle, entries);
}

HostLibrary::HostLibrary(HostLibrary &&other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)), entries_(other.entries_) {}

HostLibrary &HostLibrary::operator=(HostLibrary &&other) noexcept {
  if (this != &other) {
    if (handle_) dlclose(handle_);
    handle_ = std::exchange(other.handle_, nullptr);
    entries_ = other.entries_;
  }
  return *this;
}

HostLibrary::~HostLibrary() {
  if (handle_) dlclose(handle_);
}

std::string DefaultLibraryPath() {
  std::error_code failed;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", failed);
  if (failed) return {};
  return (self.parent_path() / ".." / "lib" / kLibraryFileName).lexically_normal().string();
}

}  // namespace tqv::tool
