// Files that anyone who may write the shared directories can plant there: FIFOs, links to devices,
// links to private files, links at the names the library is about to write.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "common/job_record.h"
#include "host/entry_points.h"
#include "platform/special_files.h"
#include "support/gateway_message.h"
#include "support/installation.h"
#include "support/platform_backend.h"

namespace tqv {
namespace {

namespace fs = std::filesystem;

class SharedDirectoriesSecurity : public testing::InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    WriteFile(ProductDir() + "/tqstring.ini",
              "[English]\r\nT720=Unknown option %s\r\nT900=OK: \r\nT901=Failed: \r\nT4400=New voicemail\r\n");
    AddFaxingSender("[VoiceMail]\r\nann@example.com=0012\r\n");
    for (const std::string &directory : {TextDir(), VoiceDir(), Outside("")})
      fs::create_directories(directory);
    ASSERT_EQ(host::Initialise(1, TextDir().c_str()), 0);
  }

  std::string TextDir() const { return PathOf("text"); }
  std::string VoiceDir() const { return PathOf("product/VOICE"); }
  // Where the attacker's links lead: files of the service's user outside every shared directory.
  std::string Outside(const std::string &name) const { return PathOf("private/" + name); }

  static bool IsLink(const std::string &path) { return fs::is_symlink(fs::symlink_status(path)); }

  std::vector<std::string> SkipNotices() const {
    std::vector<std::string> notices;
    for (const std::string &event : Events())
      if (event.find("not a plain file") != std::string::npos) notices.push_back(event);
    return notices;
  }
};

// A FIFO blocks an open until its other end is opened, /dev/zero never ends: either would stop
// the scan for good. The scan runs in a child process that an alarm ends, so a hang fails here.
TEST_F(SharedDirectoriesSecurity, SpecialFilesNeverHoldUpTheScanAndWhatFollowsIsStillTaken) {
  TQV_SKIP_ON_WIN32("FIFOs and /dev/zero are POSIX files");
  const std::vector<std::string> fifos = {GatewayOut() + "/MSG00001.TMP", TextDir() + "/A.TXT",
                                          VoiceDir() + "/00120001.ID"};
  const std::vector<std::string> zeros = {GatewayOut() + "/MSG00002.TMP", TextDir() + "/B.TXT",
                                          VoiceDir() + "/00120002.ID"};
  for (const std::string &fifo : fifos)
    ASSERT_TRUE(testing::MakeFifo(fifo));
  for (const std::string &zero : zeros)
    fs::create_symlink("/dev/zero", zero);
  WriteFile(TextDir() + "/ORDER.TXT", "::0711 42\r\nText\r\n");

  EXPECT_EQ(testing::ExitCodeOfGuarded([this] {
              ScanLater();
              return 0;
            }),
            0)
      << "the scan hung";
  EXPECT_EQ(PendingJobs().size(), 1u) << "the text file after the special ones was converted all the same";
  for (const std::string &fifo : fifos)
    EXPECT_TRUE(fs::is_fifo(fifo)) << fifo;
  for (const std::string &zero : zeros)
    EXPECT_TRUE(IsLink(zero)) << zero;
}

// Today's victim would be any file the service can read: mailed out as a message, faxed as a text
// file, read as a voicemail description. Each link is left where it is and reported once.
TEST_F(SharedDirectoriesSecurity, LinksInInputDirectoriesAreLeftAloneAndNoticedOnceEach) {
  TQV_SKIP_ON_WIN32("links need privileges on Windows");
  // A due job that names itself: whole and valid, so only its being a link keeps it back.
  JobRecord forged = FaxJob("ann@example.com", "0711 666");
  forged.View().SetText(job::JobFile, PendingDir() + "\\00000001.TQV");
  forged.View().SetNumber(job::SkipQueue, 1u);
  const std::vector<std::pair<std::string, std::string>> planted = {
      {GatewayOut() + "/MSG00001.TMP", testing::GatewayMessage{.body = "Text"}.Bytes()},
      {TextDir() + "/ORDER.TXT", "::0711 42\r\nSecret\r\n"},
      {VoiceDir() + "/00120005.ID", "[Info]\r\nDuration=3\r\nDigits=4711\r\n"},
      {Native(PendingDir()) + "/00000001.TQV", std::string(forged.Bytes())},
  };
  for (std::size_t i = 0; i < planted.size(); ++i) {
    WriteFile(Outside(std::to_string(i)), planted[i].second);
    fs::create_symlink(Outside(std::to_string(i)), planted[i].first);
  }
  for (int scan = 0; scan < 2; ++scan)
    EXPECT_EQ(ScanLater(1), 0) << "a job file that is a link is never handed out";

  EXPECT_TRUE(Messages().empty());
  for (std::size_t i = 0; i < planted.size(); ++i) {
    EXPECT_TRUE(IsLink(planted[i].first)) << planted[i].first;
    EXPECT_EQ(ReadFile(Outside(std::to_string(i))), planted[i].second);
  }
  const std::vector<std::string> notices = SkipNotices();
  ASSERT_EQ(notices.size(), planted.size()) << "one warning per link, not one per scan";
  for (const char *name : {"MSG00001.TMP", "ORDER.TXT", "00120005.ID", "00000001.TQV"}) {
    EXPECT_EQ(std::count_if(notices.begin(), notices.end(),
                            [&](const std::string &notice) {
                              return notice.starts_with("2\t") && notice.find(name) != std::string::npos;
                            }),
              1)
        << name;
  }
}

// A link waiting at the name of an error file, a gateway message or a result file: the library's
// write must not go through it, whether its target exists or not.
TEST_F(SharedDirectoriesSecurity, ALinkAtANameTheLibraryWritesLeavesWhatItLeadsToAlone) {
  TQV_SKIP_ON_WIN32("links need privileges on Windows");
  WriteFile(Outside("error-victim"), "untouched");
  fs::create_symlink(Outside("error-victim"), TextDir() + "/BAD.ERR");
  WriteFile(TextDir() + "/BAD.TXT", "::S\r\nText\r\n");  // an unknown option: an error file is due
  WriteFile(Outside("message-victim"), "untouched");
  for (int id = 0; id < 4; ++id)  // the first gateway message numbers of a new installation
    fs::create_symlink(Outside("message-victim"), GatewayIn() + "/SGW" + std::to_string(id) + ".TMP");
  WriteFile(VoiceDir() + "/00120005.ID", "[Info]\r\nDuration=3\r\n");
  WriteFile(VoiceDir() + "/00120005.PCM", "pcm");
  fs::create_symlink(Outside("created-by-result"), TextDir() + "/ORDER.OK");
  WriteFile(TextDir() + "/ORDER.TXT", "::0711 42\r\nOrder text\r\n");
  ScanLater();

  std::array<unsigned char, kJobRecordSize> buffer{};
  ASSERT_EQ(host::Scan(1, buffer.data()), 1);
  host::ScannedEventAccepted(buffer.data());
  JobRecordView(buffer.data()).SetNumber(job::Status, kStatusDelivered);
  host::FaxSent(buffer.data());

  EXPECT_EQ(ReadFile(Outside("error-victim")), "untouched");
  EXPECT_EQ(ReadFile(Outside("message-victim")), "untouched");
  EXPECT_FALSE(Exists(Outside("created-by-result")));
  // Messages still go out, under the next names that no link has taken.
  std::size_t written = 0;
  for (const fs::directory_entry &entry : fs::directory_iterator(GatewayIn()))
    written += entry.is_symlink() ? 0 : 1;
  EXPECT_EQ(written, 1u) << "the voicemail notice";
  EXPECT_NE(ReadFile(TextDir() + "/ORDER1.OK").find("Order text"), std::string::npos)
      << "the result takes the next free name";
}

}  // namespace
}  // namespace tqv
