// Attacks on the tqv tool from those who may only drop files or send mail: received-fax requests
// that name files outside their directory or links, and mail from senders who did not log in.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include "support/platform_backend.h"
#include "support/temp_dir.h"
#include "tqv/fax_service_simulator.h"
#include "tqv/host_records.h"

namespace tqv::tool {
namespace {

namespace fs = std::filesystem;

// The images the library was handed; the library's side removes each after reading it.
std::string *faxFileOfReceiver = nullptr;
std::vector<std::string> *faxesReceived = nullptr;

class ReceiveDirSecurity : public testing::TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    faxFile_ = PathOf("6B000001.FAX");
    faxFileOfReceiver = &faxFile_;
    faxesReceived = &faxes_;
    fs::create_directories(PathOf("receive"));
    WriteFile(PathOf("secret.tif"), "II*private");
    entries_.createReceiveFaxFile = [](void *record) {
      WriteText(static_cast<unsigned char *>(record), host_receive::FaxFile, *faxFileOfReceiver);
      return 0;
    };
    entries_.faxReceived = [](void *) {
      std::ifstream image(*faxFileOfReceiver, std::ios::binary);
      faxesReceived->emplace_back(std::istreambuf_iterator<char>(image), std::istreambuf_iterator<char>());
      image.close();
      fs::remove(*faxFileOfReceiver);
      return 0;
    };
  }
  void TearDown() override {
    faxFileOfReceiver = nullptr;
    faxesReceived = nullptr;
    TempDirTest::TearDown();
  }

  int Play() {
    out_.str("");
    return PlayReceiveRequests(entries_, PathOf("receive"), out_);
  }
  // Nothing was handed over, the file outside is untouched and the request is gone with a reason.
  void ExpectRefused(const std::string &request) {
    EXPECT_TRUE(faxes_.empty()) << request;
    EXPECT_EQ("II*private", ReadFile(PathOf("secret.tif"))) << request;
    EXPECT_FALSE(Exists(PathOf("receive/" + request))) << request;
    EXPECT_NE(out_.str().find("request " + request + ": "), std::string::npos) << out_.str();
  }

  std::string faxFile_;
  std::vector<std::string> faxes_;
  EntryPoints entries_;
  std::ostringstream out_;
};

TEST_F(ReceiveDirSecurity, NamesThatLeaveTheDirectoryAreRefusedAndNothingOutsideIsDeleted) {
  const std::vector<std::pair<std::string, std::string>> requests = {
      {"UP.RCV", "Image=../secret.tif\r\n"},
      {"BACK.RCV", "Image=..\\secret.tif\r\n"},
      {"ABS.RCV", "Image=" + PathOf("secret.tif") + "\r\n"},
      {"DRIVE.RCV", "Image=C:secret.tif\r\n"},
      {"DOTS.RCV", "Image=..\r\n"},
      {"OCR.RCV", "Image=IN.TIF\r\nOcr=../secret.tif\r\n"},
  };
  for (const auto &[name, text] : requests) {
    WriteFile(PathOf("receive/IN.TIF"), "II*inside");
    WriteFile(PathOf("receive/" + name), text);
    EXPECT_EQ(0, Play()) << name;
    ExpectRefused(name);
  }
}

TEST_F(ReceiveDirSecurity, LinksAndSpecialFilesAreRefusedUnreadAndWithoutWaiting) {
  TQV_SKIP_ON_WIN32("links and FIFOs as POSIX makes them");
#if !defined(_WIN32)
  fs::create_symlink(PathOf("secret.tif"), PathOf("receive/LINK.TIF"));
  WriteFile(PathOf("receive/LINK.RCV"), "Image=LINK.TIF\r\n");
  EXPECT_EQ(0, Play());
  ExpectRefused("LINK.RCV");
  EXPECT_FALSE(fs::is_symlink(fs::symlink_status(PathOf("receive/LINK.TIF")))) << "the link itself goes";

  // A request that is itself a link to a file elsewhere is not read.
  WriteFile(PathOf("elsewhere.txt"), "Image=IN.TIF\r\n");
  WriteFile(PathOf("receive/IN.TIF"), "II*inside");
  fs::create_symlink(PathOf("elsewhere.txt"), PathOf("receive/AWAY.RCV"));
  EXPECT_EQ(0, Play());
  ExpectRefused("AWAY.RCV");
  EXPECT_TRUE(Exists(PathOf("elsewhere.txt")));

  // A FIFO blocks whoever opens it for reading until a writer comes; none ever does.
  ASSERT_EQ(0, ::mkfifo(PathOf("receive/PIPE.TIF").c_str(), 0600));
  WriteFile(PathOf("receive/PIPE.RCV"), "Image=PIPE.TIF\r\n");
  EXPECT_EQ(0, Play());
  ExpectRefused("PIPE.RCV");
  ASSERT_EQ(0, ::mkfifo(PathOf("receive/FIFO.RCV").c_str(), 0600));
  EXPECT_EQ(0, Play());
  ExpectRefused("FIFO.RCV");
#endif
}

}  // namespace
}  // namespace tqv::tool
