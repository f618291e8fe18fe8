// Loading the library (dlopen, or LoadLibraryA on Windows) and resolving its entry points by name.
// A library that lacks any entry point is unloaded again and refused as a whole, so no
// half-resolved table escapes.
#include "tqv/host/host_library.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <filesystem>
#include <system_error>
#include <utility>

namespace tqv::tool {

namespace {

#if defined(_WIN32)
constexpr const char *kLibraryFileName = "TQVSPOOL.dll";

void *OpenLibrary(const std::string &path, std::string &error) {
  // Fail quietly instead of a message box when the file or one of its imports is missing.
  const UINT previousMode = ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  HMODULE module = ::LoadLibraryA(path.c_str());
  const DWORD reason = ::GetLastError();
  ::SetErrorMode(previousMode);
  if (!module) error = "cannot load the library: " + path + " (error " + std::to_string(reason) + ")";
  return module;
}

void *Symbol(void *handle, const char *name) {
  return reinterpret_cast<void *>(::GetProcAddress(static_cast<HMODULE>(handle), name));
}

void CloseLibrary(void *handle) {
  ::FreeLibrary(static_cast<HMODULE>(handle));
}
#else
constexpr const char *kLibraryFileName = "libtqvspool.so";

void *OpenLibrary(const std::string &path, std::string &error) {
  void *handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    const char *reason = dlerror();
    error = "cannot load the library: " + std::string(reason ? reason : path);
  }
  return handle;
}

void *Symbol(void *handle, const char *name) {
  return dlsym(handle, name);
}

void CloseLibrary(void *handle) {
  dlclose(handle);
}
#endif

template <typename Function>
void Resolve(void *handle, const char *name, Function &target, std::string &missing) {
  target = reinterpret_cast<Function>(Symbol(handle, name));
  if (target) return;
  if (!missing.empty()) missing += ", ";
  missing += name;
}

}  // namespace

std::optional<HostLibrary> HostLibrary::Load(const std::string &path, std::string &error) {
  void *handle = OpenLibrary(path, error);
  if (!handle) return std::nullopt;
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
    CloseLibrary(handle);
    error = path + " is not a tqvspool library: no " + missing;
    return std::nullopt;
  }
  return HostLibrary(handle, entries);
}

HostLibrary::HostLibrary(HostLibrary &&other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)), entries_(other.entries_) {}

HostLibrary &HostLibrary::operator=(HostLibrary &&other) noexcept {
  if (this != &other) {
    if (handle_) CloseLibrary(handle_);
    handle_ = std::exchange(other.handle_, nullptr);
    entries_ = other.entries_;
  }
  return *this;
}

HostLibrary::~HostLibrary() {
  if (handle_) CloseLibrary(handle_);
}

std::string DefaultLibraryPath() {
#if defined(_WIN32)
  // The build puts the DLL beside the programs, where Windows looks for it first.
  char self[MAX_PATH] = {};
  const DWORD length = ::GetModuleFileNameA(nullptr, self, sizeof self);
  if (length == 0 || length >= sizeof self) return {};
  return (std::filesystem::path(std::string(self, length)).parent_path() / kLibraryFileName).string();
#else
  std::error_code failed;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", failed);
  if (failed) return {};
  return (self.parent_path() / ".." / "lib" / kLibraryFileName).lexically_normal().string();
#endif
}

}  // namespace tqv::tool
