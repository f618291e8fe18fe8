// What the fuzz targets share: a loud stop on a broken invariant, one private directory made on
// first use and removed at exit, files written and read byte for byte, and an installation there
// that the library finds as it would on a server.
#pragma once

#include <errno.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

namespace tqv::fuzz {

namespace fs = std::filesystem;

// Aborts so that libFuzzer keeps the input; the program's name says which target stopped.
[[noreturn]] inline void Fail(const char *what) {
  std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, what);
  std::abort();
}

// The same new directory under the temporary directory on every call.
inline const fs::path &Sandbox() {
  static const fs::path *directory = [] {
    std::string pattern = (fs::temp_directory_path() / "tqvfuzz.XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) Fail("cannot make a temporary directory");
    return new fs::path(pattern);
  }();
  static const bool removedAtExit = std::atexit([] {
                                      std::error_code ignored;
                                      fs::remove_all(*directory, ignored);
                                    }) == 0;
  (void)removedAtExit;
  return *directory;
}

inline void WriteBytes(const fs::path &path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc).write(bytes.data(), std::streamsize(bytes.size()));
}

inline std::string ReadBytes(const fs::path &path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// The machine file under <sandbox>/windows names `product`, whose tqvconfg.ini holds `config`;
// events go to <sandbox>/events.log rather than to syslog.
inline void InstallProduct(const fs::path &product, std::string_view config) {
  fs::create_directories(Sandbox() / "windows/Corvanta");
  fs::create_directories(product);
  setenv("TQVSPOOL_WINDIR", (Sandbox() / "windows").c_str(), 1);
  setenv("TQVSPOOL_EVENTLOG", (Sandbox() / "events.log").c_str(), 1);
  WriteBytes(Sandbox() / "windows/Corvanta/TQVMSERV.INI",
             "[Corvanta]\r\nDirectory=" + product.string() + "\r\n");
  WriteBytes(product / "tqvconfg.ini", config);
}

}  // namespace tqv::fuzz
