// Sets up the sandbox installation of `tqv traffic`: the machine file, settings, two users with
// their routes and voicemail boxes, and every directory a writer or the host needs.
#include "tqv/traffic/traffic_installation.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

namespace tqv::tool {

namespace {

namespace fs = std::filesystem;

// Settings files have CR LF line ends, as Windows writes them.
bool WriteSettings(const std::string &path, const std::string &lines, std::string &error) {
  std::string text;
  for (const char c : lines) {
    if (c == '\n') text += '\r';
    text += c;
  }
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
  if (!out.flush()) {
    error = "cannot write " + path;
    return false;
  }
  return true;
}

std::string AdminDatabase(const TrafficPaths &paths) {
  const std::string cover = paths.product + "/COVER/";
  std::ostringstream db;
  // anna: SendFaxes, RemoteAdministration, AttachOnSuccess; bert: SendFaxes, ReceiveUnrouted.
  db << "[Recipient List]\n"
     << kAnna << "=Anna Berger\n"
     << kBert << "=Bert Keller\n"
     << "[Recipients Properties]\n"
     << kAnna << "=2305\n"
     << kBert << "=3\n"
     << "[VoiceMail]\n"
     << kAnna << "=00" << kAnnaBox << "\n"
     << kBert << "=00" << kBertBox << "\n"
     << "[Routing]\nCSID_00000=" << kAnna << "," << kAnnaCsid << "\nDTMF_00000=" << kBert << "," << kBertDtmf
     << "\n";
  for (const std::string_view user : {kAnna, kBert})
    db << "[" << user << "]\nT_00000=TEMPLATE," << cover << "TEMPLATE.RTF\nDefaultTemplate=TEMPLATE\n";
  return db.str();
}

}  // namespace

TrafficPaths::TrafficPaths(std::string rootDirectory)
    : root(std::move(rootDirectory)),
      windows(root + "/windows"),
      product(root + "/product"),
      gatewayIn(root + "/gw/in"),
      gatewayOut(root + "/gw/out"),
      pending(gatewayOut + "/PENDING"),
      work(product + "/TEMP/TQVSPOOL"),
      textFiles(root + "/text"),
      receive(root + "/receive"),
      voicemail(product + "/VOICE"),
      traffic(root + "/traffic"),
      staging(traffic + "/staging"),
      eventLog(root + "/events.log") {}

bool SetUpTrafficInstallation(const TrafficPaths &paths, const std::string &stringFile, std::string &error) {
  std::error_code failed;
  for (const std::string &directory :
       {paths.windows + "/Corvanta", paths.product + "/COVER", paths.gatewayIn, paths.gatewayOut,
        paths.textFiles, paths.receive, paths.voicemail, paths.staging}) {
    fs::create_directories(directory, failed);
    if (failed) {
      error = "cannot create " + directory + ": " + failed.message();
      return false;
    }
  }
  std::string strings = "[English]\n";
  if (!stringFile.empty()) {
    std::ifstream in(stringFile, std::ios::binary);
    if (!in) {
      error = "cannot read the string file " + stringFile;
      return false;
    }
    strings.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  std::ofstream(paths.product + "/tqstring.ini", std::ios::binary) << strings;
  const std::string config = "[Directories]\nGatewayIn=" + paths.gatewayIn +
                             "\nGatewayOut=" + paths.gatewayOut + "\nCoverDir=" + paths.product +
                             "/COVER\nVoicemail=" + paths.voicemail +
                             "\n[Misc]\nMailSystem=SMTP\nLanguage=EN\n"
                             "[Phone Properties]\nInternationalPrefix=00\nCountryCode=49\nAreaCode=89\n"
                             "[JFAX Dial]\nDomain=jfax.invalid\nDial0=" +
                             std::string(kJfaxPrefix) + "\n";
  return WriteSettings(paths.windows + "/Corvanta/TQVMSERV.INI",
                       "[Corvanta]\nDirectory=" + paths.product + "\n", error) &&
         WriteSettings(paths.windows + "/WIN.INI", "[intl]\nsShortDate=dd/MM/yyyy\nsTime=:\niTime=1\n",
                       error) &&
         WriteSettings(paths.product + "/tqvconfg.ini", config, error) &&
         WriteSettings(paths.product + "/COVER/TEMPLATE.RTF", "{\\rtf1 \\fs22 }\n", error) &&
         WriteSettings(paths.product + "/tqvadmin.ini", AdminDatabase(paths), error);
}

}  // namespace tqv::tool
