// Whatever values a message is given, the reader finds each on its own line and nothing more:
// a value's line ends, NULs and length cannot start a line, and no block's name or data can
// make the reader lose the block's end.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "config/service_state.h"
#include "gateway/message_reader.h"
#include "gateway/message_writer.h"
#include "support/installation.h"
#include "support/platform_backend.h"

namespace tqv {
namespace {

using namespace std::string_literals;

// What the reader found in a message, blocks stepped over as the gateway steps over them.
struct ReadBack {
  std::string sender, subject, statusInfo, customString, fileType;
  std::vector<std::string> recipients;
  std::vector<std::string> attachments;  // name "=" contents
  std::vector<std::string> bodies;
  bool blocksWhole = true;
};

class MessageRoundTrip : public testing::InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    CurrentService().gatewayInDirectory = GatewayIn();
  }

  ReadBack ReadMessage() {
    const std::vector<std::string> names = FileNames(GatewayIn());
    EXPECT_EQ(names.size(), 1u);
    const std::string path = GatewayIn() + "/" + names.at(0);
    ReadBack found;
    MessageReader reader;
    EXPECT_TRUE(reader.Open(path));
    for (ReadCode code; (code = reader.ReadNext()) != ReadCode::End;) {
      const std::string block = PathOf("block");
      if (code == ReadCode::Recipient) {
        std::array<char, 256> name{}, address{};
        reader.GetRecipient(name, address);
        found.recipients.emplace_back(address.data());
      } else if (code == ReadCode::Body) {
        found.blocksWhole = reader.ExtractBody(block) && found.blocksWhole;
        found.bodies.push_back(Exists(block) ? ReadFile(block) : "");
      } else if (code == ReadCode::Attachment) {
        found.blocksWhole = reader.ExtractAttachment(block) && found.blocksWhole;
        std::array<char, kMaxAttachmentName + 1> name{};
        reader.GetAttachmentName(name);
        found.attachments.push_back(std::string(name.data()) + "=" + (Exists(block) ? ReadFile(block) : ""));
      } else if (code == ReadCode::Malformed) {
        found.blocksWhole = false;
      }
      std::filesystem::remove(block);
    }
    std::array<char, 256> text{};
    reader.GetSender(text);
    found.sender = text.data();
    reader.GetSubject(text);
    found.subject = text.data();
    reader.GetStatusInfo(text);
    found.statusInfo = text.data();
    reader.GetCustomString(text);
    found.customString = text.data();
    reader.GetFileTypeField(text);
    found.fileType = text.data();
    reader.Close();
    std::filesystem::remove(path);
    return found;
  }
};

// As much of the expected value as fits the line the reader takes it from.
std::string Fitting(const std::string &expected, HeaderKeyword keyword) {
  return expected.substr(0, HeaderValueRoom(keyword));
}

TEST_F(MessageRoundTrip, HostileValuesReadBackOnTheirOwnLines) {
  const std::string atTheCut = std::string(235, 'k') + "\r\nRCPT TO:e@x.yz\r\nMAPIMAIL.DAT:";
  const struct {
    const char *what;
    std::string value;
    std::string read;  // before the cut to the line
  } cases[] = {
      {"plain", "jane@example.com", "jane@example.com"},
      {"CR", "a\rb", "a b"},
      {"LF", "a\nb", "a b"},
      {"CR LF and a keyword", "a\r\nRCPT TO:e@x.yz", "a  RCPT TO:e@x.yz"},
      {"line end at the end", "a\r\n", "a  "},
      {"NUL ends the value", "a\0\r\nRCPT TO:e@x.yz"s, "a"},
      {"keyword of its own", "MAPIMAIL.DAT:", "MAPIMAIL.DAT:"},
      {"300 characters", std::string(300, 'v'), std::string(300, 'v')},
      {"a keyword where a long line would be cut", atTheCut,
       std::string(235, 'k') + "  RCPT TO:e@x.yz  MAPIMAIL.DAT:"},
      {"only line ends", std::string(200, '\n') + std::string(200, '\r'), std::string(400, ' ')},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    MessageWriter writer;
    ASSERT_TRUE(writer.Create());
    writer.SetSender(c.value);
    writer.SetSubject(c.value);
    writer.SetStatusInfo(c.value);
    writer.SetFileType(c.value);
    writer.SetCustomString(c.value);
    writer.AddRecipient("first");
    writer.AddRecipient(c.value);
    writer.AddRecipient("last");
    writer.AddBody("body");
    ASSERT_TRUE(writer.Close());

    const ReadBack found = ReadMessage();
    EXPECT_EQ(found.recipients,
              (std::vector<std::string>{"first", Fitting(c.read, HeaderKeyword::RcptTo), "last"}));
    EXPECT_EQ(found.sender, Fitting(c.read, HeaderKeyword::MailFrom));
    EXPECT_EQ(found.subject, Fitting(c.read, HeaderKeyword::Subject));
    EXPECT_EQ(found.statusInfo, Fitting(c.read, HeaderKeyword::FaxStatusInfo));
    EXPECT_EQ(found.customString, Fitting(c.read, HeaderKeyword::CustomString));
    EXPECT_EQ(found.fileType, Fitting(c.read, HeaderKeyword::FileType));
    EXPECT_EQ(found.bodies, std::vector<std::string>{"body\r\n"}) << "the message was read to its end";
  }
}

// Attachment names come from the documents' file names; their data from whoever sent them.
TEST_F(MessageRoundTrip, AttachmentNamesAndDataCannotBreakTheirBlock) {
  TQV_SKIP_ON_WIN32("colons and line ends in file names exist only on POSIX file systems");
  const std::string data = "\r\n----endattach\r\nRCPT TO:e@x.yz\r\nMAPIMAIL.DAT:\r\n";
  // As long as a path may be: in a short temporary directory, longer than an attachment line holds.
  const std::string longName = std::string(259 - PathOf("").size() - 4, 'n') + ".pdf";
  const std::string lengthPart = ":" + std::to_string(data.size());
  const struct {
    std::string name, read;
  } cases[] = {
      {"scan.tif", "scan.tif"},
      {"a:1.pdf", "a_1.pdf"},
      {"b\r\nRCPT TO:e.pdf", "b__RCPT TO_e.pdf"},
      // The line keeps the name's start, its colon and the whole length.
      {longName, longName.substr(0, 253 - "----beginattach:"s.size() - lengthPart.size())},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.read);
    const std::string path = PathOf(c.name);
    WriteFile(path, data);
    MessageWriter writer;
    ASSERT_TRUE(writer.Create());
    writer.AddRecipient("ann");
    ASSERT_TRUE(writer.AddAttachment(path));
    writer.AddBody("after");
    ASSERT_TRUE(writer.Close());

    const ReadBack found = ReadMessage();
    EXPECT_TRUE(found.blocksWhole);
    EXPECT_EQ(found.recipients, std::vector<std::string>{"ann"});
    EXPECT_EQ(found.attachments, std::vector<std::string>{c.read + "=" + data});
    EXPECT_EQ(found.bodies, std::vector<std::string>{"after\r\n"});
  }
}

// A length past what the reader's number holds would be read as a short block whose rest is lines.
TEST_F(MessageRoundTrip, FilesTooLongForABlockAreLeftOut) {
  const std::string huge = PathOf("huge.bin");
  WriteFile(huge, "");
  std::filesystem::resize_file(huge, kMaxBlockBytes + 1);  // sparse: nothing is written
  MessageWriter writer;
  ASSERT_TRUE(writer.Create());
  writer.AddRecipient("ann");
  EXPECT_FALSE(writer.AddAttachment(huge));
  EXPECT_TRUE(writer.AddBody("text", huge));
  ASSERT_TRUE(writer.Close());

  const ReadBack found = ReadMessage();
  EXPECT_TRUE(found.blocksWhole);
  EXPECT_TRUE(found.attachments.empty());
  EXPECT_EQ(found.bodies, std::vector<std::string>{"text\r\n"});
}

}  // namespace
}  // namespace tqv
