// Description files as a voice recorder might leave them: the first eight input bytes name the file
// (so bad names are fuzzed too), the rest is its text; one voicemail pass then delivers it. The
// pass must remove every description file it read and never lose a recording.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <string>

#include "config/service_state.h"
#include "fuzz_support.h"
#include "host/entry_points.h"
#include "incoming/voicemail_delivery.h"

namespace {

namespace fs = std::filesystem;

using tqv::fuzz::Fail;
using tqv::fuzz::WriteBytes;

// The installation, set up and started on first use.
const fs::path &Sandbox() {
  static const bool started = [] {
    const fs::path &sandbox = tqv::fuzz::Sandbox();
    for (const char *sub : {"product/COVER", "product/VOICE", "gw/in", "gw/out"})
      fs::create_directories(sandbox / sub);
    const fs::path product = sandbox / "product";
    tqv::fuzz::InstallProduct(product, "[Directories]\r\nGatewayIn=" + (sandbox / "gw/in").string() +
                                           "\r\nGatewayOut=" + (sandbox / "gw/out").string() +
                                           "\r\nCoverDir=" + (product / "COVER").string() +
                                           "\r\nVoicemail=" + (product / "VOICE").string() + "\r\n");
    WriteBytes(product / "tqstring.ini", "[English]\r\nT4400=%s%s%n\r\nT651=%d\r\n");
    // ann owns box 12; bob takes every recording nobody owns.
    WriteBytes(product / "tqvadmin.ini",
               "[Recipient List]\r\nann=Ann\r\nbob=Bob\r\n[Recipients Properties]\r\nann=0\r\nbob=3\r\n"
               "[VoiceMail]\r\nann=0012|Ann\r\n");
    if (tqv::host::Initialise(0, "") != 0) Fail("the library does not start in the sandbox");
    return true;
  }();
  (void)started;
  return tqv::fuzz::Sandbox();
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
  WriteBytes(voice / (name + ".ID"), text);
  WriteBytes(voice / (name + ".PCM"), "pcm");

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
