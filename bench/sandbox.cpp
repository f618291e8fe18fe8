#include "sandbox.h"

#include "bench_checks.h"

namespace tqv::bench {

Sandbox::Sandbox(const fs::path &root, const std::string &adminDatabase) : root_(root) {
  if (fs::exists(root_)) Fail("the sandbox " + root_.string() + " exists already");
  for (const fs::path &directory : {Windows() / "Corvanta", Product(), GatewayIn(), GatewayOut()})
    fs::create_directories(directory);
  WriteBytes(Windows() / "Corvanta" / "TQVMSERV.INI",
             "[Corvanta]\r\nDirectory=" + Product().string() + "\r\n");
  WriteBytes(Product() / "tqvconfg.ini", "[Directories]\r\nGatewayIn=" + GatewayIn().string() +
                                             "\r\nGatewayOut=" + GatewayOut().string() +
                                             "\r\nCoverDir=" + (Product() / "COVER").string() +
                                             "\r\nVoicemail=" + (Product() / "VOICE").string() + "\r\n");
  WriteBytes(Product() / "tqstring.ini", "[English]\r\n");
  WriteBytes(AdminDatabase(), adminDatabase.empty() ? OneUserDatabase() : adminDatabase);
}

Sandbox::~Sandbox() {
  std::error_code ignored;
  fs::remove_all(root_, ignored);
}

fs::path Sandbox::Scratch(std::string_view name) const {
  const fs::path directory = root_ / "bench" / name;
  fs::create_directories(directory);
  return directory;
}

std::string OneUserDatabase() {
  const std::string user(kSender);
  return "[Recipient List]\r\n" + user + "=Bench\r\n[Recipients Properties]\r\n" + user + "=1\r\n";
}

}  // namespace tqv::bench
