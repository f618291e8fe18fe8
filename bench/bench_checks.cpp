#include "bench_checks.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>

#include "platform/posix/native_path.h"

namespace tqv::bench {

void Fail(const std::string &reason) {
  std::fflush(stdout);
  std::fprintf(stderr, "\ntqvbench: %s\n", reason.c_str());
  std::fflush(stderr);
  // No exit handlers: in a round's child they belong to the parent.
  _exit(1);
}

void WriteBytes(const fs::path &path, std::string_view bytes) {
  std::ofstream stream(path, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  Check(static_cast<bool>(stream), "cannot write " + path.string());
}

std::string ReadBytes(const fs::path &path) {
  std::ifstream stream(path, std::ios::binary);
  Check(static_cast<bool>(stream), "cannot read " + path.string());
  return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

std::vector<fs::path> FilesIn(const fs::path &directory, std::string_view suffix) {
  std::vector<fs::path> files;
  for (const fs::directory_entry &entry : fs::directory_iterator(directory)) {
    const std::string name = entry.path().filename().string();
    if (entry.is_regular_file() && name.ends_with(suffix)) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string RandomBytes(std::size_t size, unsigned seed) {
  std::mt19937 random(seed);
  std::string bytes(size, '\0');
  std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
  return bytes;
}

fs::path NativePath(std::string_view libraryPath) {
  return platform::ToNativePath(libraryPath);
}

}  // namespace tqv::bench
