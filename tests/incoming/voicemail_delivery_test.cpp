#include "incoming/voicemail_delivery.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "common/job_record.h"
#include "host/entry_points.h"
#include "platform/file.h"
#include "reports/report_fixture.h"
#include "reports/report_layout.h"

namespace tqv {
namespace {

class VoicemailDelivery : public testing::ReportTest {
 protected:
  std::string Voice(const std::string &name) const { return PathOf("product/VOICE/" + name); }
  std::string VoicePath(const std::string &name) const { return ProductDir() + "\\VOICE\\" + name; }
  void Record(const std::string &name, const std::string &info) const {
    WriteFile(Voice(name + ".ID"), "[Info]\r\n" + info);
    WriteFile(Voice(name + ".PCM"), "pcm " + name);
  }
  void Users(const std::string &properties, const std::string &boxes) const {
    std::string list = "[Recipient List]\r\n";
    for (const char *user : {"ann", "bob", "cid"})
      list += std::string(user) + "=x\r\n";
    WriteFile(ProductDir() + "/tqvadmin.ini",
              list + "[Recipients Properties]\r\n" + properties + "[VoiceMail]\r\n" + boxes);
  }
};

// The pass runs within S_Scan; the recording stays where the recorder left it.
TEST_F(VoicemailDelivery, EveryOwnerOfTheBoxIsToldAndTheRecordingStays) {
  Users("", "ann=0012|Ann's box\r\nbob=40\r\ncid=12\r\n");
  Record("00120005", "Duration=35\r\nSize=280000\r\nDigits=12\r\n");
  std::array<unsigned char, kJobRecordSize> job{};
  EXPECT_EQ(host::Scan(1, job.data()), 0);

  const std::vector<std::string> messages = Messages();
  ASSERT_EQ(messages.size(), 2u);
  const std::string report = FormatVoicemailReport(12, 5, 35, 280000, "12");
  EXPECT_EQ(
      messages[0],
      "X-Tnef-Attach:\r\nFile Type:\r\nMAIL FROM:Corvanta\r\nRCPT TO:ann\r\nDATA:\r\n"
      "X-Message-Class:IPM.NOTE\r\nDate:1046873109\r\nX-Message-ID:\r\nExternal-Received-By:\r\n"
      "External-Received-At:\r\nExternal-Attempted-By:\r\nExternal-Deferred-At:\r\nInternal-Received-By:\r\n"
      "Internal-Received-At:\r\nInternal-Attempted-By:\r\nInternal-Deferred-At:\r\nFrom:Corvanta\r\n"
      "TO:ann\r\nSubject:Voicemail #5 (35 secs,280K)\r\nPriority:Normal\r\nImportance:Normal\r\n"
      "Custom-String:\r\nFAX-Status:4\r\nFAX-StatusInfo:New voicemail\r\nFAX-NumRetries:0\r\n"
      "FAX-CallDuration:35\r\nFAX-PagesTransferred:0\r\nFAX-DeliveryTime:1046873109\r\n"
      "----beginbody:" +
          std::to_string(report.size() + 2) + "\r\n" + report + "\r\n\r\n----endbody\r\n");
  EXPECT_EQ(HeaderOf(messages[1], "RCPT TO:"), "cid");
  EXPECT_FALSE(Exists(Voice("00120005.ID")));
  EXPECT_EQ(ReadFile(Voice("00120005.PCM")), "pcm 00120005");
}

// Nobody owns box 12: the first user who may fax and takes unrouted faxes gets the recording,
// renumbered after the highest of that user's box; bob's copy then fails, cid lacks SendFaxes.
TEST_F(VoicemailDelivery, UnownedRecordingMovesToTheCatchAllBox) {
  Users("ann=3\r\nbob=3\r\ncid=2\r\n", "ann=40\r\nbob=40\r\ncid=40\r\n");
  for (const char *other : {"00400003.PCM", "00400002.pcm", "00410007.PCM", "00400009.WAV", "0040.PCM"})
    WriteFile(Voice(other), "");
  Record("00120005", "Duration=35\r\nSize=280000\r\n");
  ScanVoicemail();
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_EQ(HeaderOf(Messages()[0], "RCPT TO:"), "ann");
  EXPECT_EQ(HeaderOf(Messages()[0], "Subject:"), "Voicemail #4 (35 secs,280K)");
  EXPECT_NE(Messages()[0].find(FormatVoicemailReport(40, 4, 35, 280000, "")), std::string::npos);
  EXPECT_EQ(ReadFile(Voice("00400004.pcm")), "pcm 00120005");
  EXPECT_FALSE(Exists(Voice("00120005.PCM")) || Exists(Voice("00120005.ID")));

  // 9998 leads to 9999, which is taken: every copy fails, the recording stays, nobody is told.
  WriteFile(Voice("00409999.pcm"), "");
  WriteFile(Voice("00409998.PCM"), "");
  Record("00120006", "");
  ScanVoicemail();
  EXPECT_EQ(Messages().size(), 1u);
  EXPECT_TRUE(Exists(Voice("00120006.PCM")));
  EXPECT_FALSE(Exists(Voice("00120006.ID")));
}

TEST_F(VoicemailDelivery, BadNamesAreReportedAndHeldFilesWait) {
  Users("", "ann=12\r\n");
  Record("0012005", "Duration=1\r\n");
  Record("00120005", "Duration= 12s\r\nSize=999\r\n");
  {
    std::optional<platform::File> recorder = platform::File::OpenExclusive(VoicePath("00120005.ID"));
    ASSERT_TRUE(recorder);
    ScanVoicemail();
    EXPECT_TRUE(Messages().empty());
    EXPECT_TRUE(Exists(Voice("00120005.ID"))) << "still being written";
  }
  EXPECT_FALSE(Exists(Voice("0012005.ID")));
  EXPECT_TRUE(Exists(Voice("0012005.PCM")));
  ScanVoicemail();
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_EQ(HeaderOf(Messages()[0], "Subject:"), "Voicemail #5 (12 secs,0K)") << "numbers read as atol does";

  DeliverVoicemailFile("00120005.ID");
  DeliverVoicemailFile(VoicePath("00120005"));
  EXPECT_EQ(Events(), (std::vector<std::string>{
                          "1\tCorvanta FAX Service\tInvalid voicemail filebody '0012005'",
                          "1\tCorvanta FAX Service\tInvalid voicemail file, no '\\' found",
                          "1\tCorvanta FAX Service\tInvalid voicemail file, no '.' found",
                      }));

  // A directory gone between passes finds nothing.
  std::filesystem::remove_all(Voice(""));
  ScanVoicemail();
  EXPECT_EQ(Messages().size(), 1u);
}

}  // namespace
}  // namespace tqv
