#include "gateway/message_writer.h"

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "config/service_state.h"
#include "gateway/message_counter.h"
#include "gateway/message_reader.h"
#include "platform/file.h"
#include "platform/profile.h"
#include "support/installation.h"

namespace tqv {
namespace {

using namespace std::string_literals;

// Lines 2 to 13 of a message whose writer was given nothing.
constexpr std::string_view kEmptyHeaderLines =
    "File Type:\r\nMAIL FROM:\r\nDATA:\r\nX-Message-Class:IPM.NOTE\r\nDate:0\r\nX-Message-ID:\r\n"
    "External-Received-By:\r\nExternal-Received-At:\r\nExternal-Attempted-By:\r\nExternal-Deferred-At:\r\n"
    "Internal-Received-By:\r\nInternal-Received-At:\r\nInternal-Attempted-By:\r\nInternal-Deferred-At:\r\n"
    "From:\r\nSubject:\r\nPriority:Normal\r\nImportance:Normal\r\nCustom-String:\r\nFAX-Status:0\r\n"
    "FAX-StatusInfo:\r\nFAX-NumRetries:0\r\nFAX-CallDuration:0\r\nFAX-PagesTransferred:0\r\n"
    "FAX-DeliveryTime:0\r\n";

// The gateway directories as start-up would set them, without starting the library; the message
// counter lives in the product directory.
class MessageWriterTest : public testing::InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    CurrentService().gatewayInDirectory = GatewayIn();
    CurrentService().gatewayOutDirectory = GatewayOut();
  }

  std::string CounterFile() const { return ProductDir() + "/SGW_ID.INI"; }
  std::string MessageIn(int number) const { return GatewayIn() + "/SGW" + std::to_string(number) + ".TMP"; }
  std::string EmptyMessageWith(std::string_view blocks) const {
    return "X-Tnef-Attach:\r\n" + std::string(kEmptyHeaderLines) + std::string(blocks);
  }
};

// The message is compared whole, then read back: both sides of the one keyword table.
TEST_F(MessageWriterTest, WrittenMessageIsExactAndReadsBack) {
  std::string binary;
  for (int i = 0; i < 256; ++i)
    binary += static_cast<char>(i);
  binary += "\r\n----endattach\r\n" + binary;
  WriteFile(PathOf("scan.tif"), binary);
  WriteFile(PathOf("notes.txt"), "from a file\r\n");

  MessageWriter writer;
  ASSERT_TRUE(writer.Create());
  writer.SetFileType("KVDTQVOUT");
  writer.SetSender("jane@example.com");
  writer.AddRecipient("[[['Jane Doe']]]+49 30 1234");  // the reader drops the bracketed name
  writer.AddRecipient("bob@example.com");
  writer.SetSubject("Your fax");
  writer.SetCustomString(std::string_view("ticket 7\0garbage", 16));
  writer.SetFaxStatus(-2);
  writer.SetStatusInfo("Busy");
  writer.SetNumRetries(3);
  writer.SetCallDuration(45);
  writer.SetPagesTransferred(2);
  writer.SetDeliveryTime(1700000000);
  EXPECT_TRUE(writer.AddBodyBuffer("buffered\r\n"));
  EXPECT_TRUE(writer.AddBody("Line one\r\nLine two", PathOf("notes.txt")));
  EXPECT_TRUE(writer.AddBody("", PathOf("notes.txt")));
  EXPECT_TRUE(writer.AddBody("abc", PathOf("missing.txt")));
  EXPECT_TRUE(writer.AddBody(""));
  EXPECT_TRUE(writer.AddAttachment(Dir() + "\\scan.tif"));
  writer.SetSubject("too late to be written");
  writer.Close();

  // The buffered body stands before the header lines.
  EXPECT_EQ(
      ReadFile(MessageIn(0)),
      "X-Tnef-Attach:\r\n----beginbody:12\r\nbuffered\r\n\r\n\r\n----endbody\r\n"
      "File Type:KVDTQVOUT\r\nMAIL FROM:jane@example.com\r\nRCPT TO:[[['Jane Doe']]]+49 30 1234\r\n"
      "RCPT TO:bob@example.com\r\nDATA:\r\nX-Message-Class:IPM.NOTE\r\nDate:1700000000\r\nX-Message-ID:\r\n"
      "External-Received-By:\r\nExternal-Received-At:\r\nExternal-Attempted-By:\r\nExternal-Deferred-At:\r\n"
      "Internal-Received-By:\r\nInternal-Received-At:\r\nInternal-Attempted-By:\r\nInternal-Deferred-At:\r\n"
      "From:jane@example.com\r\nTO:[[['Jane Doe']]]+49 30 1234\r\nTO:bob@example.com\r\nSubject:Your fax\r\n"
      "Priority:Normal\r\nImportance:Normal\r\nCustom-String:ticket 7\r\nFAX-Status:-2\r\n"
      "FAX-StatusInfo:Busy\r\nFAX-NumRetries:3\r\nFAX-CallDuration:45\r\nFAX-PagesTransferred:2\r\n"
      "FAX-DeliveryTime:1700000000\r\n"
      "----beginbody:33\r\nLine one\r\nLine twofrom a file\r\n\r\n\r\n----endbody\r\n"
      "----beginbody:15\r\nfrom a file\r\n\r\n\r\n----endbody\r\n"
      "----beginbody:5\r\nabc\r\n\r\n----endbody\r\n"
      "----beginbody:0\r\n\r\n----endbody\r\n"
      "----beginattach:scan.tif:529\r\n" +
          binary + "\r\n----endattach\r\n");

  MessageReader reader;
  ASSERT_TRUE(reader.Open(MessageIn(0)));
  std::vector<int> codes;
  std::vector<std::string> recipients, bodies, attachments;
  for (ReadCode code; (code = reader.ReadNext()) != ReadCode::End;) {
    codes.push_back(static_cast<int>(code));
    const std::string target = PathOf("part" + std::to_string(codes.size()));
    if (code == ReadCode::Recipient) {
      std::array<char, 256> name{}, address{};
      reader.GetRecipient(name, address);
      recipients.push_back(address.data());
    } else if (code == ReadCode::Body) {
      ASSERT_TRUE(reader.ExtractBody(target));
      bodies.push_back(Exists(target) ? ReadFile(target) : "(none)");
    } else if (code == ReadCode::Attachment) {
      ASSERT_TRUE(reader.ExtractAttachment(target));
      std::array<char, 261> name{};
      reader.GetAttachmentName(name);
      attachments.push_back(std::string(name.data()) + "=" + ReadFile(target));
    }
  }
  EXPECT_EQ(codes, (std::vector<int>{4, 14, 1, 2, 2, 3, 6, 8, 9, 10, 11, 12, 13, 4, 4, 4, 4, 5}));
  EXPECT_EQ(recipients, (std::vector<std::string>{"+49 30 1234", "bob@example.com"}));
  EXPECT_EQ(bodies, (std::vector<std::string>{"buffered\r\n\r\n", "Line one\r\nLine twofrom a file\r\n\r\n",
                                              "from a file\r\n\r\n", "abc\r\n", "(none)"}));
  EXPECT_EQ(attachments, (std::vector<std::string>{"scan.tif=" + binary}));

  std::array<char, 256> sender{}, subject{}, statusInfo{}, custom{}, fileType{};
  reader.GetSender(sender);
  reader.GetSubject(subject);
  reader.GetStatusInfo(statusInfo);
  reader.GetCustomString(custom);
  reader.GetFileTypeField(fileType);
  EXPECT_STREQ(sender.data(), "jane@example.com");
  EXPECT_STREQ(subject.data(), "Your fax");
  EXPECT_STREQ(statusInfo.data(), "Busy");
  EXPECT_EQ(std::string(custom.data(), 9), "ticket 7\0"s);
  EXPECT_STREQ(fileType.data(), "KVDTQVOUT");
  EXPECT_EQ(reader.FaxStatus(), -2);
  EXPECT_EQ(reader.NumRetries(), 3);
  EXPECT_EQ(reader.CallDuration(), 45);
  EXPECT_EQ(reader.PagesTransferred(), 2);
  EXPECT_EQ(reader.DeliveryTime(), 1700000000);
}

TEST_F(MessageWriterTest, RefusedBlocksLeaveOnlyTheHeaderLines) {
  WriteFile(PathOf("empty.pdf"), "");
  WriteFile(PathOf("held.pdf"), "data");
  const std::optional<platform::File> holder = platform::File::OpenExclusive(PathOf("held.pdf"));
  ASSERT_TRUE(holder);

  MessageWriter writer;
  ASSERT_TRUE(writer.Create());
  EXPECT_FALSE(writer.AddBodyBuffer(""));
  EXPECT_FALSE(writer.AddAttachment(""));
  EXPECT_FALSE(writer.AddAttachment(PathOf("missing.pdf")));
  EXPECT_FALSE(writer.AddAttachment(PathOf("empty.pdf")));
  EXPECT_FALSE(writer.AddAttachment(PathOf("held.pdf")));
  writer.Close();
  EXPECT_EQ(ReadFile(MessageIn(0)), EmptyMessageWith(""));
}

TEST_F(MessageWriterTest, CreateRefusesAnOpenFileAnEarlyRecipientAndAMissingDirectory) {
  MessageWriter writer;
  ASSERT_TRUE(writer.Create(GatewayDirection::Out));
  EXPECT_FALSE(platform::File::OpenShared(GatewayOut() + "/SGW0.TMP")) << "held without sharing";
  EXPECT_FALSE(writer.Create()) << "a second Create while the file is open";
  writer.Close();
  EXPECT_TRUE(platform::File::OpenExclusive(GatewayOut() + "/SGW0.TMP"));
  EXPECT_EQ(ReadFile(GatewayOut() + "/SGW0.TMP"), EmptyMessageWith(""));
  EXPECT_FALSE(Exists(MessageIn(1))) << "the refused Create made no file";

  MessageWriter early;
  early.AddRecipient("early@example.com");
  EXPECT_FALSE(early.Create());
  CurrentService().gatewayInDirectory = PathOf("missing");
  EXPECT_FALSE(MessageWriter().Create());
}

TEST_F(MessageWriterTest, KeepsAtMost1024Recipients) {
  MessageWriter writer;
  ASSERT_TRUE(writer.Create());
  for (int i = 0; i < 1024; ++i)
    ASSERT_TRUE(writer.AddRecipient("r" + std::to_string(i)));
  EXPECT_FALSE(writer.AddRecipient("r1024"));
  writer.Close();

  const std::string message = ReadFile(MessageIn(0));
  EXPECT_NE(message.find("RCPT TO:r1023\r\nDATA:"), std::string::npos);
  EXPECT_NE(message.find("TO:r1023\r\nSubject:"), std::string::npos);
  EXPECT_EQ(message.find("r1024"), std::string::npos);
}

TEST_F(MessageWriterTest, CounterRunsUpTo99998AndStartsAgainAtZero) {
  struct Case {
    std::optional<std::string_view> stored;
    std::int32_t number;
    std::string_view storedAfter;
  };
  const Case cases[] = {
      {std::nullopt, 0, "1"}, {"41", 41, "42"}, {"99998", 99998, "99999"},
      {"99999", 0, "1"},      {"-5", 0, "1"},   {"many", 0, "1"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.stored.value_or("(missing)"));
    WriteFile(CounterFile(), c.stored ? "[In]\r\nId=" + std::string(*c.stored) + "\r\n" : "");
    EXPECT_EQ(NextMessageId(), c.number);
    EXPECT_EQ(platform::ProfileLookup("In", "Id", CounterFile()), c.storedAfter);
  }
}

class MessageReaderTest : public testing::TempDirTest {
 protected:
  void OpenMessage(const std::string &bytes) {
    reader.emplace();
    WriteFile(MessagePath(), bytes);
    ASSERT_TRUE(reader->Open(MessagePath()));
  }
  std::vector<int> CodesToEnd() {
    std::vector<int> codes;
    for (int i = 0; i < 100; ++i) {
      codes.push_back(static_cast<int>(reader->ReadNext()));
      if (codes.back() == 0) break;
    }
    return codes;
  }
  std::string MessagePath() const { return PathOf("SGW1.TMP"); }
  std::string TargetPath() const { return PathOf("target.out"); }

  std::optional<MessageReader> reader;
};

TEST_F(MessageReaderTest, LinesGiveTheirKeywordCodes) {
  const std::string x292(292, 'x'), x246(246, 'x'), x245(245, 'x'), x255(255, 'X');
  const struct {
    std::string name, bytes;
    std::vector<int> codes;
    std::string subject;
  } cases[] = {
      {"every acted-on keyword",
       "MAIL FROM:a\r\nRCPT TO:b\r\nSubject:c\r\nCustom-String:d\r\nFAX-Status:2\r\nFAX-StatusInfo:e\r\n"
       "FAX-NumRetries:1\r\nFAX-CallDuration:2\r\nFAX-PagesTransferred:3\r\nFAX-DeliveryTime:4\r\n"
       "File Type:KVDTQVOUT\r\n----beginbody:0\r\n----beginattach:a.pdf:9\r\n",
       {1, 2, 3, 6, 8, 9, 10, 11, 12, 13, 14, 4, 5, 0},
       "c"},
      {"written-only, unknown and case-mismatched lines are read past",
       "X-Tnef-Attach:\r\nDATA:\r\nFrom:x\r\nTO:y\r\n\r\nsubject:a\r\n Subject:b\r\nSubject:s\r\n",
       {3, 0},
       "s"},
      {"MAPIMAIL.DAT ends the message", "Subject:a\r\nMAPIMAIL.DAT:\r\nSubject:b\r\n", {3, 0}, "a"},
      {"an unterminated last line is never seen", "Subject:a\r\nSubject:b", {3, 0}, "a"},
      {"lone CR and LF stay in the line", "Subject:a\rb\nc\r\n", {3, 0}, "a\rb\nc"},
      {"attachment lines without a length, or with a NUL before it",
       "----beginattach:a.pdf\r\n----beginattach:a.pdf:0\r\n----beginattach:a.pdf\0:5\r\n"s,
       {-1, -1, -1, 0},
       ""},
      {"a 300-byte line is cut after 255 bytes", "Subject:" + x292 + "\r\n", {3, 0}, std::string(247, 'x')},
      {"the rest of a long line is a line of its own", x255 + "Subject:tail\r\n", {3, 0}, "tail"},
      {"253 characters and CR LF make one line", "Subject:" + x245 + "\r\nSubject:z\r\n", {3, 3, 0}, "z"},
      // The CR is the 255th byte: it stays in the line, and the LF starts the next one.
      {"254 characters leave the LF to the next line",
       "Subject:" + x246 + "\r\nSubject:z\r\n",
       {3, 0},
       x246 + "\r"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.name);
    OpenMessage(c.bytes);
    EXPECT_EQ(CodesToEnd(), c.codes);
    std::array<char, 256> subject{};
    reader->GetSubject(subject);
    EXPECT_EQ(std::string(subject.data()), c.subject);
  }
}

TEST_F(MessageReaderTest, GettersCutToTheirBuffers) {
  OpenMessage("MAIL FROM:abcdef\r\nCustom-String:ab\0junk\r\nFile Type:JFXTQVOUT\r\n"s);
  CodesToEnd();
  std::array<char, 4> sender;
  reader->GetSender(sender);
  EXPECT_EQ(std::string(sender.data(), 4), "abc\0"s);

  // The whole field is handed out: the value, then NULs, never more than its 256 bytes.
  std::array<char, 300> field;
  field.fill('Z');
  reader->GetCustomString(std::span(field).first(8));
  EXPECT_EQ(std::string(field.data(), 9), "ab\0\0\0\0\0\0Z"s);
  field.fill('Z');
  reader->GetFileTypeField(field);
  EXPECT_EQ(std::string(field.data(), 10), "JFXTQVOUT\0"s);
  EXPECT_EQ(field[255], '\0');
  EXPECT_EQ(field[256], 'Z');
}

TEST_F(MessageReaderTest, OpenRefusesAHeldFileAndASecondFile) {
  WriteFile(MessagePath(), "Subject:a\r\n");
  reader.emplace();
  {
    const std::optional<platform::File> writer = platform::File::OpenExclusive(MessagePath());
    ASSERT_TRUE(writer);
    EXPECT_FALSE(reader->Open(MessagePath()));
  }
  EXPECT_FALSE(reader->Open(PathOf("missing.TMP")));
  ASSERT_TRUE(reader->Open(MessagePath()));
  EXPECT_FALSE(reader->Open(MessagePath()));
  EXPECT_FALSE(platform::File::OpenShared(MessagePath())) << "held without sharing";
}

TEST_F(MessageReaderTest, ExtractBodyAndAttachment) {
  const std::string binary = "\0\r\n----endattach\r\n\xff"s;
  const struct {
    std::string name;
    std::string block;  // from the "----begin..." line on
    bool extracted;
    std::string target;  // empty: no file
  } cases[] = {
      {"empty body", "----beginbody:0\r\n\r\n----endbody\r\n", true, ""},
      {"blank body", "----beginbody:5\r\n \t\r\n \r\n----endbody\r\n", true, ""},
      {"text with its CR LF", "----beginbody:5\r\nabc\r\n\r\n----endbody\r\n", true, "abc\r\n"},
      {"only the end line's start counts", "----beginbody:3\r\n a \r\n----endbody and more\r\n", true, " a "},
      {"blanks before text", "----beginbody:5\r\n  \r\nx\r\n----endbody\r\n", true, "  \r\nx"},
      {"body: wrong end line", "----beginbody:5\r\nabc\r\n\r\nSubject:x\r\n", false, ""},
      {"unterminated end line", "----beginbody:3\r\nabc\r\n----endbody", false, ""},
      {"body data cut short", "----beginbody:50\r\nabc\r\n----endbody\r\n", false, ""},
      {"body: negative length", "----beginbody:-1\r\nabc\r\n----endbody\r\n", false, ""},
      {"binary data", "----beginattach:a.bin:19\r\n" + binary + "\r\n----endattach\r\n", true, binary},
      {"blanks are attachment data", "----beginattach:a.txt:2\r\n  \r\n----endattach\r\n", true, "  "},
      {"attachment: wrong end line", "----beginattach:a.bin:3\r\nabc\r\n----endbody\r\n", false, ""},
      {"length beyond the file", "----beginattach:a.bin:300\r\nabc\r\n----endattach\r\n", false, ""},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.name);
    OpenMessage(c.block);
    const ReadCode code = reader->ReadNext();
    ASSERT_TRUE(code == ReadCode::Body || code == ReadCode::Attachment);
    const bool extracted =
        code == ReadCode::Body ? reader->ExtractBody(TargetPath()) : reader->ExtractAttachment(TargetPath());
    EXPECT_EQ(extracted, c.extracted);
    EXPECT_EQ(Exists(TargetPath()), !c.target.empty());
    EXPECT_EQ(Exists(TargetPath()) ? ReadFile(TargetPath()) : "", c.target);
    std::filesystem::remove(TargetPath());
  }

  // An older, longer target must not leave its tail behind.
  WriteFile(TargetPath(), "an older and longer file");
  OpenMessage("----beginbody:3\r\nnew\r\n----endbody\r\n");
  ASSERT_EQ(reader->ReadNext(), ReadCode::Body);
  EXPECT_TRUE(reader->ExtractBody(TargetPath()));
  EXPECT_EQ(ReadFile(TargetPath()), "new");
}

}  // namespace
}  // namespace tqv
