// A file read only when it is a plain file of its own name: never through a link, never a FIFO,
// device or directory, so a name dropped by someone else cannot reach another file or block.
// Every refusal is a result with its reason; nothing throws.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace tqv::tool {

struct PlainFileOpen {
  // A final link is refused unless this is set (for a path the operator typed).
  bool followLinks = false;
  // No other handle may have the file open meanwhile: a writer still holding it makes the open
  // fail with `held` set, as the library's own exclusive opens do.
  bool exclusive = false;
};

class PlainFile {
 public:
  // Nullopt with the reason in `error` ("is a link", "is not a plain file", ...); `held` says the
  // file is fine but another handle has it, so a later try may succeed.
  static std::optional<PlainFile> Open(const std::string &nativePath, PlainFileOpen how, std::string &error,
                                       bool *held = nullptr);

  PlainFile(PlainFile &&other) noexcept;
  PlainFile &operator=(PlainFile &&other) noexcept;
  PlainFile(const PlainFile &) = delete;
  PlainFile &operator=(const PlainFile &) = delete;
  ~PlainFile();

  // Bytes read, 0 at the end, nullopt on a read error.
  std::optional<std::size_t> Read(void *buffer, std::size_t size);
  // The rest of the file; nullopt on a read error or when it holds more than `limit` bytes.
  std::optional<std::string> ReadAll(std::size_t limit);

 private:
  explicit PlainFile(std::intptr_t handle) : handle_(handle) {}
  void Close() noexcept;

  std::intptr_t handle_;
};

}  // namespace tqv::tool
