// Playing a received fax against a scripted library: the files must be where the library will
// look for them when it is told, and a failed copy must not reach the library at all.
#include "tqv/received_fax.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <vector>

#include "common/receive_record.h"
#include "support/temp_dir.h"

namespace tqv::tool {
namespace {

struct ScriptedReceiver {
  std::string faxFile;
  std::vector<unsigned char> record;  // as handed to S_FaxReceived
  int handed = 0;
};

ScriptedReceiver *receiver = nullptr;

int CreateReceiveFaxFile(void *record) {
  ReceiveRecordView(record).SetText(receive::FaxFile, receiver->faxFile);
  return 0;
}

class ReceivedFaxPlay : public testing::TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    setenv("TQVSPOOL_DRIVE_X", Dir().c_str(), 1);
    std::filesystem::create_directory(PathOf("TEMP"));
    receiver = &script_;
    script_.faxFile = "X:\\TEMP\\0000ABCD.FAX";
    entries_.createReceiveFaxFile = CreateReceiveFaxFile;
    entries_.faxReceived = [](void *record) {
      auto *bytes = static_cast<unsigned char *>(record);
      receiver->record.assign(bytes, bytes + kReceiveRecordSize);
      receiver->handed++;
      return 0;
    };
    WriteFile(PathOf("image.tif"), "II*image");
    WriteFile(PathOf("ocr.txt"), "ACME invoice");
  }
  void TearDown() override {
    unsetenv("TQVSPOOL_DRIVE_X");
    receiver = nullptr;
    TempDirTest::TearDown();
  }

  ScriptedReceiver script_;
  EntryPoints entries_;
  std::ostringstream output_;
  std::string error_;
};

TEST_F(ReceivedFaxPlay, ImageAndTextLieWhereTheRecordSays) {
  const ReceivedFax fax{.csid = "+49 89 123",
                        .dtmfDigits = "42",
                        .imageFile = PathOf("image.tif"),
                        .ocrTextFile = PathOf("ocr.txt")};
  ASSERT_TRUE(PlayReceivedFax(entries_, fax, output_, error_)) << error_;

  ASSERT_EQ(script_.handed, 1);
  ReceiveRecordView record(script_.record.data());
  EXPECT_EQ(record.Text(receive::RemoteId), "+49 89 123");
  EXPECT_EQ(record.Text(receive::DtmfDigits), "42");
  EXPECT_EQ(record.Number(receive::Result), 4u);
  EXPECT_EQ(record.Text(receive::FaxFile), "X:\\TEMP\\0000ABCD.FAX");
  EXPECT_EQ(record.Number(receive::OcrAvailable), 1u);
  EXPECT_EQ(record.Text(receive::OcrTextFile), "X:\\TEMP\\0000ABCD.TXT");
  EXPECT_EQ(ReadFile(PathOf("TEMP/0000ABCD.FAX")), ReadFile(PathOf("image.tif")));
  EXPECT_EQ(ReadFile(PathOf("TEMP/0000ABCD.TXT")), "ACME invoice");
}

TEST_F(ReceivedFaxPlay, FailedCopyNeverReachesTheLibraryAndLeavesNothing) {
  // The text's name is taken: the image already copied is removed again.
  WriteFile(PathOf("TEMP/0000ABCD.TXT"), "someone else's");
  const ReceivedFax fax{.imageFile = PathOf("image.tif"), .ocrTextFile = PathOf("ocr.txt")};
  EXPECT_FALSE(PlayReceivedFax(entries_, fax, output_, error_));
  EXPECT_NE(error_.find("cannot copy"), std::string::npos) << error_;
  EXPECT_FALSE(Exists(PathOf("TEMP/0000ABCD.FAX")));
  EXPECT_EQ(ReadFile(PathOf("TEMP/0000ABCD.TXT")), "someone else's");
  EXPECT_EQ(script_.handed, 0);
}

}  // namespace
}  // namespace tqv::tool
