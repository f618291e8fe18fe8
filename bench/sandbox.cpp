#include "sandbox.h"

#include <sys/stat.h>

#include <chrono>
#include <ctime>
#include <thread>

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

void Sandbox::LetSettingsDirectoriesAge() const {
  for (const fs::path &directory : {Windows(), Windows() / "Corvanta"}) {
    struct stat info {};
    Check(::stat(directory.c_str(), &info) == 0, "cannot look at " + directory.string());
    while (info.st_ctim.tv_sec >= std::time(nullptr) - 3)
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
}

std::string OneUserDatabase() {
  const std::string user(kSender);
  return "[Recipient List]\r\n" + user + "=Bench\r\n[Recipients Properties]\r\n" + user + "=1\r\n";
}

}  // namespace tqv::bench
