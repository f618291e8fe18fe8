// Description files as a voice recorder might leave them: the first eight input bytes name the file
// (so bad names are fuzzed too), the rest is its text; one voicemail pass then delivers it. The
// pass must remove every description file it read and never lose a recording.
#include <stdlib.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "config/service_state.h"
#include "host/entry_points.h"
#include "incoming/voicemail_delivery.h"

namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const char *what) {
  std::fprintf(stderr, "voicemail_description_fuzz: %s\n", what);
  std::abort();
}

void Write(const fs::path &path, const std::string &bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

const fs::path &Sandbox() {
  static const fs::path *directory = [] {
    std::string pattern = (fs::temp_directory_path() / "tqvfuzz.XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) Fail("cannot make a temporary directory");
    const fs::path *made = new fs::path(pattern);
    std::atexit([] {
      std::error_code ignored;
      fs::remove_all(*directory, ignored);
    });
    for (const char *sub : {"windows/Corvanta", "product/COVER", "product/VOICE", "gw/in", "gw/out"})
      fs::create_directories(*made / sub);
    const fs::path product = *made / "product";
    setenv("TQVSPOOL_WINDIR", (*made / "windows").c_str(), 1);
    setenv("TQVSPOOL_EVENTLOG", (*made / "events.log").c_str(), 1);
    Write(*made / "windows/Corvanta/TQVMSERV.INI", "[Corvanta]\r\nDirectory=" + product.string() + "\r\n");
    Write(product / "tqvconfg.ini", "[Directories]\r\nGatewayIn=" + (*made / "gw/in").string() +
                                        "\r\nGatewayOut=" + (*made / "gw/out").string() +
                                        "\r\nCoverDir=" + (product / "COVER").string() +
                                        "\r\nVoicemail=" + (product / "VOICE").string() + "\r\n");
    Write(product / "tqstring.ini", "[English]\r\nT4400=%s%s%n\r\nT651=%d\r\n");
    // ann owns box 12; bob takes every recording nobody owns.
    Write(product / "tqvadmin.ini",
          "[Recipient List]\r\nann=Ann\r\nbob=Bob\r\n[Recipients Properties]\r\nann=0\r\nbob=3\r\n"
          "[VoiceMail]\r\nann=0012|Ann\r\n");
    if (tqv::host::Initialise(0, "") != 0) Fail("the library does not start in the sandbox");
    return made;
  }();
  return *directory;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const fs::path voice = Sandbox() / "product/VOICE";
  for (const char *sub : {"product/VOICE", "gw/in"})
    for (const auto &entry : fs::directory_iterator(Sandbox() / sub))
      fs::remove_all(entry.path());

  std::string name(reinterpret_cast<const char *>(data), std::min<std::size_t>(size, 8));
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '0');
  if (name.empty()) name = "0";
  const std::string text(reinterpret_cast<const char *>(data) + std::min<std::size_t>(size, 8),
                         size - std::min<std::size_t>(size, 8));
  Write(voice / (name + ".ID"), text);
  Write(voice / (name + ".PCM"), "pcm");

  tqv::ScanVoicemail();

  std::size_t recordings = 0;
  for (const auto &entry : fs::directory_iterator(voice)) {
    const std::string extension = entry.path().extension().string();
    if (extension == ".ID") Fail("a description file was left after it was read");
    if (extension == ".PCM") ++recordings;
  }
  if (recordings != 1) Fail("a recording was lost or duplicated");
  return 0;
}
