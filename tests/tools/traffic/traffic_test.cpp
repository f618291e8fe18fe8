// The traffic generator's promises: each item is what its expectation says, a file is visible
// only while its writer holds it, and the account catches outputs lost, doubled, cut or empty.
#ifdef TQV_MAIL_BRIDGE

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/file.h"
#include "support/temp_dir.h"
#include "tqv/shared/mail_gateway_file.h"
#include "tqv/traffic/traffic_tally.h"
#include "tqv/traffic/traffic_writer.h"

namespace tqv::tool {
namespace {

namespace fs = std::filesystem;

class Traffic : public testing::TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    paths_ = TrafficPaths(PathOf("sandbox"));
    std::string error;
    ASSERT_TRUE(SetUpTrafficInstallation(paths_, "", error)) << error;
  }

  TrafficItem Item(TrafficKind kind, int sequence, unsigned seed = 1) {
    std::mt19937 random(seed);
    return MakeTrafficItem(kind, TrafficId(kind, 0, sequence),
                           {paths_.gatewayOut, paths_.textFiles, paths_.voicemail, paths_.receive}, random);
  }

  // The item's message file read back with the library's reader; nullopt when it is refused.
  std::optional<GatewayMail> ReadBack(const TrafficItem &item) {
    WriteFile(PathOf("message"), item.files.back().bytes);
    bool busy = false;
    std::string error;
    return ReadGatewayFile(PathOf("message"), Dir(), busy, error);
  }

  void Expect(const TrafficItem &item) {
    std::ofstream(paths_.traffic + "/manifest-0.txt", std::ios::app) << ManifestLine(item.expected) << "\n";
  }

  // As the library writes it: the bridge's format plus the status line that only the library writes.
  void Output(const std::string &name, const GatewayMail &mail) {
    WriteFile(paths_.gatewayIn + "/" + name,
              "FAX-Status:" + std::to_string(mail.faxStatus) + "\r\n" + FormatGatewayMail(mail));
  }

  TrafficPaths paths_{""};  // set once the test has its directory
};

// The concurrency test holds the library to these expectations; here they are held to the message
// itself, so a generator fault shows as one, not as a library fault.
TEST_F(Traffic, MessagesAskForTheJobsTheirRecipientsAndOptionLinesMake) {
  for (int sequence = 0; sequence < 40; ++sequence) {
    const TrafficItem item = Item(TrafficKind::Message, sequence, static_cast<unsigned>(sequence));
    const std::optional<GatewayMail> mail = ReadBack(item);
    ASSERT_TRUE(mail.has_value());
    const int optionRecipients = mail->body.rfind("::", 0) == 0 ? 1 : 0;
    EXPECT_EQ(item.expected.jobs, static_cast<int>(mail->recipients.size()) + optionRecipients);
    int jfax = 0;
    for (const std::string &number : mail->recipients)
      jfax += number.rfind(kJfaxPrefix, 0) == 0 ? 1 : 0;
    EXPECT_EQ(item.expected.outputs.count("jfax") ? item.expected.outputs.at("jfax") : 0, jfax);
    const std::optional<CheckedTextFound> text = FindCheckedText(mail->body);
    ASSERT_TRUE(text.has_value());
    EXPECT_TRUE(text->intact);
    EXPECT_EQ(item.expected.id, text->id);
    EXPECT_EQ(mail->attachments.size(), text->documents.size());
    EXPECT_EQ(item.expected, *ParseManifestLine(ManifestLine(item.expected)));
  }
}

TEST_F(Traffic, MalformedMessagesThatAreDroppedCannotBeRead) {
  int dropped = 0, answered = 0;
  for (int sequence = 0; sequence < 40; ++sequence) {
    const TrafficItem item = Item(TrafficKind::BadMessage, sequence, static_cast<unsigned>(sequence));
    EXPECT_EQ(0, item.expected.jobs);
    if (item.expected.outputs.empty()) {
      ++dropped;
      EXPECT_FALSE(ReadBack(item).has_value()) << "a message the library must drop reads whole";
    } else {
      ++answered;
      EXPECT_TRUE(ReadBack(item).has_value());
    }
  }
  EXPECT_GT(dropped, 0);
  EXPECT_GT(answered, 0);
}

TEST_F(Traffic, CheckLineSeesACutAByteChangedAndAnotherItemsText) {
  const std::string text = CheckedText("M0000001", "line one\r\nline two\r\n");
  EXPECT_TRUE(FindCheckedText("report text\r\n" + text)->intact);
  std::string changed = text;
  changed[20] ^= 1;
  EXPECT_FALSE(FindCheckedText(changed)->intact);
  EXPECT_FALSE(FindCheckedText(text.substr(0, 30))->intact);
  EXPECT_FALSE(FindCheckedText("no marker here").has_value());
  EXPECT_EQ("F0000042", FindTrafficId("LOADFAX F0000042 \x01\x02", TrafficKind::ReceivedFax));
  EXPECT_EQ("", FindTrafficId("XF0000042 F00000421", TrafficKind::ReceivedFax));
}

TEST_F(Traffic, AFileIsVisibleOnlyWhileItsWriterHoldsIt) {
  const TrafficFile file{paths_.gatewayOut, "HELD.MSG", std::string(4000, 'x')};
  const std::string target = paths_.gatewayOut + "/HELD.MSG";
  std::string error;
  std::thread writer([&] { EXPECT_TRUE(PlaceHeldFile(paths_.staging, file, 400, error)) << error; });
  while (!fs::exists(target))
    std::this_thread::yield();
  EXPECT_FALSE(platform::File::OpenExclusive(target).has_value()) << "visible but not held";
  EXPECT_EQ(2000u, fs::file_size(target));
  writer.join();
  EXPECT_EQ(file.bytes, ReadFile(target));
  EXPECT_TRUE(fs::is_empty(paths_.staging));
  EXPECT_FALSE(PlaceHeldFile(paths_.staging, file, 0, error)) << "a name that exists is never replaced";
}

TEST_F(Traffic, AccountCountsLostDoubledAndChangedOutputs) {
  TrafficItem item = Item(TrafficKind::Message, 1);
  item.expected.outputs = {{"report", 2}};
  Expect(item);
  TrafficItem other = Item(TrafficKind::Message, 2);
  other.expected.outputs = {{"report", 1}};
  Expect(other);
  GatewayMail report{"Recipient",
                     {std::string(kAnna)},
                     "Delivered",
                     item.expected.id,
                     "Fax report\r\n" + CheckedText(item.expected.id, "text\r\n"),
                     {},
                     2,
                     ""};
  Output("SGW1.TMP", report);
  report.body.replace(report.body.find("text"), 4, "TEXT");
  Output("SGW2.TMP", report);  // the right count, one of them changed
  report.customString = other.expected.id;
  report.body = "Fax report\r\n" + CheckedText(other.expected.id, "text\r\n");
  Output("SGW3.TMP", report);
  Output("SGW4.TMP", report);                     // one too many
  WriteFile(paths_.gatewayIn + "/SGW5.TMP", "");  // being created: left alone

  EXPECT_EQ(4, CollectTrafficOutputs(paths_));
  const TrafficTally tally = TallyTraffic(paths_);
  EXPECT_TRUE(tally.missing.empty());
  ASSERT_EQ(1u, tally.surplus.size());
  EXPECT_EQ(other.expected.id + " report: expected 1, got 2", tally.surplus[0]);
  ASSERT_EQ(1u, tally.damaged.size());
  EXPECT_NE(std::string::npos, tally.damaged[0].find("cut or changed"));
  ASSERT_EQ(1u, tally.leftovers.size());
  EXPECT_NE(std::string::npos, tally.leftovers[0].find("SGW5.TMP"));
  EXPECT_FALSE(TrafficAccounted(tally, false));
}

TEST_F(Traffic, AccountMissesAnOutputThatNeverCame) {
  TrafficItem item = Item(TrafficKind::ReceivedFax, 7);
  for (const TrafficFile &file : item.files)
    WriteFile(file.directory + "/" + file.name, file.bytes);
  Expect(item);
  TrafficTally tally = TallyTraffic(paths_);
  ASSERT_EQ(1u, tally.missing.size());
  EXPECT_EQ(item.expected.id + " fax: expected 1, got 0", tally.missing[0]);

  GatewayMail fax{"+49 89 123456",
                  {std::string(kAnna)},
                  "Fax received",
                  "",
                  "report",
                  {{"6B000001.FAX", item.files[0].bytes}},
                  4,
                  ""};
  Output("SGW1.TMP", fax);
  CollectTrafficOutputs(paths_);
  tally = TallyTraffic(paths_);
  EXPECT_EQ(1, tally.faxesRouted);
  EXPECT_TRUE(TrafficAccounted(tally, false)) << TrafficSummary(tally);
  EXPECT_FALSE(TrafficAccounted(tally, true)) << "the request and image are still in the receive directory";
}

}  // namespace
}  // namespace tqv::tool

#endif
