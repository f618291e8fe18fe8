// Every file operation of the incoming road fails in turn: a received fax image is never gone
// without a message carrying it or an event saying so, a recording is never lost, and a message
// is there whole or not at all.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <string>

#include "common/job_record.h"
#include "common/receive_record.h"
#include "host/entry_points.h"
#include "support/fault_sweep.h"

namespace tqv {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kImage = "II* received fax image";

class IncomingFaultSweep : public testing::FaultSweepTest {
 protected:
  void Install(std::string_view users) const {
    FaultSweepTest::Install("T900=OK: \r\nT901=Failed: \r\nT903=fax from \r\nT4400=New voicemail\r\n", users);
  }
  std::string Voice(const std::string &name) const { return ProductDir() + "/VOICE/" + name; }
};

TEST_F(IncomingFaultSweep, AReceivedFaxReachesItsUsersOrAnEventSaysItDidNot) {
  std::array<unsigned char, kReceiveTouchedSize> record{};
  std::string receiveLog;
  Sweep({
      [&] {
        Install(
            "[Recipient List]\r\nbob=Bob\r\n[Recipients Properties]\r\nbob=0\r\n[Routing]\r\n"
            "CSID_00000=bob,+49 89 1234\r\n");
        fs::create_directories(PathOf("archive"));
        record = {};
        ReceiveRecordView receive(record.data());
        host::CreateReceiveFaxFile(record.data());
        WriteFile(Native(receive.Text(receive::FaxFile)), kImage);
        WriteFile(PathOf("fax.txt"), "Dear Bob\r\n");
        receive.SetText(receive::RemoteId, "+49 89 1234");
        receive.SetNumber(receive::Result, kResultReceived);
        receive.SetNumber(receive::PagesReceived, 1u);
        receive.SetNumber(receive::AttachOcrText, 1u);
        receive.SetText(receive::OcrTextFile, PathOf("fax.txt"));
        receive.SetNumber(receive::ArchiveReceived, 1u);
        receive.SetText(receive::ArchiveDir, PathOf("archive"));
      },
      [&] { host::FaxReceived(record.data()); },
      [&](const testing::FaultPlan &plan) {
        if (!plan.Faulted()) {
          receiveLog = ReadFile(ProductDir() + "/rcvlog.txt");
          ASSERT_EQ(FilesIn(GatewayIn()).size(), 1u);
        }
        ExpectOnlyWholeMessages(plan);
        ExpectWholeLogLines(ReadFile(ProductDir() + "/rcvlog.txt"), receiveLog);
        for (const auto &[name, bytes] : FilesIn(PathOf("archive"))) {
          EXPECT_TRUE(bytes == kImage || bytes == "Dear Bob\r\n") << name;
        }
        // The image is deleted whatever happened: it lives on in a message to bob, or an event tells.
        const std::map<std::string, std::string> delivered = FilesIn(GatewayIn());
        const std::string imageBlock =
            ":" + std::to_string(kImage.size()) + "\r\n" + std::string(kImage) + "\r\n";
        const bool reachedBob = std::any_of(delivered.begin(), delivered.end(), [&](const auto &message) {
          return message.second.find("RCPT TO:bob\r\n") != std::string::npos &&
                 message.second.find(imageBlock) != std::string::npos;
        });
        if (!reachedBob) {
          EXPECT_TRUE(EventNames({"+49 89 1234", "could not be delivered"}))
              << "the fax did not reach bob, and no event\n"
              << EventList();
        }
      },
  });
}

TEST_F(IncomingFaultSweep, ARecordingIsNeverLostAndItsAnnouncementIsWholeOrAbsent) {
  Sweep({
      [&] {
        // Nobody owns box 12: the recording moves to ann's box 40, where message 3 is taken.
        Install(
            "[Recipient List]\r\nann=Ann\r\n[Recipients Properties]\r\nann=3\r\n[VoiceMail]\r\nann=40\r\n");
        WriteFile(Voice("00120005.ID"), "[Info]\r\nDuration=35\r\nSize=280000\r\n");
        WriteFile(Voice("00120005.PCM"), "pcm 5");
        WriteFile(Voice("00400003.PCM"), "pcm 3");
      },
      [&] { Scan(); },
      [&](const testing::FaultPlan &plan) {
        const std::map<std::string, std::string> voice = FilesIn(ProductDir() + "\\VOICE");
        if (!plan.Faulted()) {
          ASSERT_EQ(FilesIn(GatewayIn()).size(), 1u);
          ASSERT_TRUE(voice.contains("00400004.pcm"));
        }
        ExpectOnlyWholeMessages(plan);
        const auto copies = std::count_if(voice.begin(), voice.end(), [](const auto &file) {
          return file.second == "pcm 5" && (file.first == "00120005.PCM" || file.first == "00400004.pcm");
        });
        EXPECT_GE(copies, 1) << "the recording is lost";
        if (!voice.contains("00120005.ID") && voice.contains("00400004.pcm") &&
            !voice.contains("00120005.PCM")) {
          EXPECT_TRUE(!FilesIn(GatewayIn()).empty() || EventNames({"ann"}))
              << "moved without telling anyone\n"
              << EventList();
        }
      },
  });
}

}  // namespace
}  // namespace tqv
