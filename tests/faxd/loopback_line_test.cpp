// T.30 over the loopback line: a fax goes through two real spandsp terminals, the records' result
// fields come from the session, and each way a call can fail gives its result code.
#include "faxd/loopback_line.h"

#include <gtest/gtest.h>

#include "faxd/call_outcome.h"
#include "faxd/text_page.h"
#include "faxd/tiff_class_f.h"
#include "scratch_dir.h"

namespace tqv::faxd {
namespace {

class LoopbackCall : public testing::ScratchDirTest {
 protected:
  // Two text pages, as the renderer would make them.
  std::string TwoPageFax(Resolution resolution) {
    std::vector<PageImage> pages;
    std::string error;
    EXPECT_TRUE(RenderText("First page\fSecond page", Context(resolution), pages, error)) << error;
    const std::string path = PathOf("send.tif");
    EXPECT_TRUE(WriteClassF(path, pages, error)) << error;
    return path;
  }

  CallResult Call(FarEnd farEnd, const std::string &tiff, std::string wav = {}) {
    LoopbackOptions options;
    options.stationId = "+1 555 0199";
    options.receiveDir = Dir();
    options.farEnd = farEnd;
    options.wavFile = std::move(wav);
    LoopbackLine line(options);
    return line.Call({"5550199", tiff, "+1 555 0100"});
  }
};

TEST_F(LoopbackCall, TwoPagesGoThroughAndComeBackIn) {
  for (Resolution resolution : {Resolution::Fine, Resolution::Normal}) {
    const CallResult call = Call(FarEnd::Fax, TwoPageFax(resolution));
    const RecordOutcome sent = SendOutcomeOf(call);
    EXPECT_EQ(sent.status, kStatusDelivered) << sent.statusInfo;
    EXPECT_EQ(sent.pages, 2u);
    EXPECT_EQ(sent.remoteId, "+1 555 0199");
    EXPECT_EQ(sent.speedCode, 5);  // V.17 at 14400 bit/s
    EXPECT_EQ(sent.fine, resolution == Resolution::Fine);
    // Line time, not CPU time: training and two pages take several seconds on a line.
    EXPECT_GT(sent.callDuration, 5);
    EXPECT_LT(sent.callDuration, 120);

    const RecordOutcome received = ReceiveOutcomeOf(call);
    EXPECT_EQ(received.status, kResultReceived) << received.statusInfo;
    EXPECT_EQ(received.pages, 2u);
    EXPECT_EQ(received.remoteId, "+1 555 0100");
    ASSERT_FALSE(call.receivedTiff.empty());
    std::vector<PageImage> pages;
    std::string error;
    ASSERT_TRUE(ReadFaxTiff(call.receivedTiff, pages, error)) << error;
    ASSERT_EQ(pages.size(), 2u);
    EXPECT_EQ(pages[0].Width(), kFaxWidth);
    EXPECT_EQ(pages[0].GetResolution(), resolution);
    EXPECT_GT(pages[1].CountBlack(), 0u);
  }
}

TEST_F(LoopbackCall, EachFailureGivesItsResultCode) {
  struct Case {
    FarEnd farEnd;
    std::uint32_t status;
    const char *info;
    bool received;
  };
  const std::vector<Case> cases = {
      {FarEnd::Busy, kStatusNotSent, "busy", false},
      {FarEnd::Silent, kStatusNotSent, "no fax machine answered", false},
      {FarEnd::Refusing, kStatusSendFailed, "Failed on page 1 of 2", false},
      {FarEnd::HangsUp, kStatusSendFailed, "Failed on page", false},
  };
  const std::string tiff = TwoPageFax(Resolution::Fine);
  for (const Case &c : cases) {
    const CallResult call = Call(c.farEnd, tiff);
    const RecordOutcome sent = SendOutcomeOf(call);
    EXPECT_EQ(sent.status, c.status) << static_cast<int>(c.farEnd) << ": " << sent.statusInfo;
    EXPECT_NE(sent.statusInfo.find(c.info), std::string::npos) << sent.statusInfo;
    EXPECT_LT(sent.pages, 2u);
    if (call.received) {
      EXPECT_EQ(ReceiveOutcomeOf(call).status, kResultReceiveFailed);
    }
  }
}

TEST_F(LoopbackCall, AnImageT30CannotReadIsNotSent) {
  const RecordOutcome sent = SendOutcomeOf(Call(FarEnd::Fax, Write("bad.tif", "not a tiff")));
  EXPECT_EQ(sent.status, kStatusNotSent);
  EXPECT_NE(sent.statusInfo.find("cannot be sent"), std::string::npos) << sent.statusInfo;
}

TEST_F(LoopbackCall, TheCallsAudioIsRecorded) {
  const CallResult call = Call(FarEnd::Fax, TwoPageFax(Resolution::Normal), PathOf("call.wav"));
  const std::string wav = Read(PathOf("call.wav"));
  ASSERT_GT(wav.size(), 44u);
  EXPECT_EQ(wav.substr(0, 4), "RIFF");
  EXPECT_EQ(wav.substr(8, 8), "WAVEfmt ");
  // Stereo 16-bit at 8000 samples a second: 32000 bytes a second of line time.
  EXPECT_NEAR((wav.size() - 44) / 32000.0, call.lineSeconds, 11);
}

TEST(CallOutcome, SpeedCodes) {
  const std::vector<std::pair<int, int>> cases = {{0, 0},    {2400, 0},  {4800, 1},  {7200, 2},
                                                  {9600, 3}, {12000, 4}, {14400, 5}, {33600, 5}};
  for (const auto &[rate, code] : cases)
    EXPECT_EQ(SpeedCodeOf(rate), code) << rate;
}

}  // namespace
}  // namespace tqv::faxd
