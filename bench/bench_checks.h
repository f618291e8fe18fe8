// The bench judges its own results: a figure whose work went wrong stops the run with the reason,
// so a fast wrong answer never reaches the table. Also the small file helpers the figures share.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tqv::bench {

namespace fs = std::filesystem;

// Prints "tqvbench: <reason>" and ends the process (a round's child process as well) with 1.
[[noreturn]] void Fail(const std::string &reason);
inline void Check(bool condition, const std::string &reason) {
  if (!condition) Fail(reason);
}

void WriteBytes(const fs::path &path, std::string_view bytes);
std::string ReadBytes(const fs::path &path);
// The regular files directly in `directory` whose names end with `suffix` (any when empty), sorted.
std::vector<fs::path> FilesIn(const fs::path &directory, std::string_view suffix = "");
// Bytes that neither compress nor repeat, the same for the same seed.
std::string RandomBytes(std::size_t size, unsigned seed);
// The file-system path of a path the library wrote into a record or a file (Windows form).
fs::path NativePath(std::string_view libraryPath);

}  // namespace tqv::bench
