// Messages of the gateway directories, written and read. Whatever values a message is given, the
// reader finds each on its own line and nothing more: a value's line ends, NULs and length cannot
// start a line, and no block's name or data can make the reader lose the block's end.
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
#include "support/platform_backend.h"

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

// What the reader found in a message, blocks stepped over as the gateway steps over them.
struct ReadBack {
  std::vector<int> codes;
  std::string sender, subject, statusInfo, customString, fileType;
  std::vector<std::int64_t> numbers;  // status, retries, call duration, pages, delivery time
  std::vector<std::string> recipients;
  std::vector<std::string> attachments;  // name "=" contents
  std::vector<std::string> bodies;
  bool blocksWhole = true;
};

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

  // Reads the one message of gateway-in, then removes it.
  ReadBack ReadMessage() {
    const std::vector<std::string> names = FileNames(GatewayIn());
    EXPECT_EQ(names.size(), 1u);
    const std::string path = GatewayIn() + "/" + names.at(0);
    ReadBack found;
    MessageReader reader;
    EXPECT_TRUE(reader.Open(path));
    for (ReadCode code; (code = reader.ReadNext()) != ReadCode::End;) {
      found.codes.push_back(static_cast<int>(code));
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
    found.numbers = {reader.FaxStatus(), reader.NumRetries(), reader.CallDuration(),
                     reader.PagesTransferred(), reader.DeliveryTime()};
    reader.Close();
    std::filesystem::remove(path);
    return found;
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

  const ReadBack found = ReadMessage();
  EXPECT_EQ(found.codes, (std::vector<int>{4, 14, 1, 2, 2, 3, 6, 8, 9, 10, 11, 12, 13, 4, 4, 4, 4, 5}));
  EXPECT_EQ(found.recipients, (std::vector<std::string>{"+49 30 1234", "bob@example.com"}));
  EXPECT_EQ(found.bodies,
            (std::vector<std::string>{"buffered\r\n\r\n", "Line one\r\nLine twofrom a file\r\n\r\n",
                                      "from a file\r\n\r\n", "abc\r\n", ""}));
  EXPECT_EQ(found.attachments, (std::vector<std::string>{"scan.tif=" + binary}));
  EXPECT_TRUE(found.blocksWhole);
  EXPECT_EQ((std::vector<std::string>{found.sender, found.subject, found.statusInfo, found.customString,
                                      found.fileType}),
            (std::vector<std::string>{"jane@example.com", "Your fax", "Busy", "ticket 7", "KVDTQVOUT"}));
  EXPECT_EQ(found.numbers, (std::vector<std::int64_t>{-2, 3, 45, 2, 1700000000}));
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

// As much of the expected value as fits the line the reader takes it from.
std::string Fitting(const std::string &expected, HeaderKeyword keyword) {
  return expected.substr(0, HeaderValueRoom(keyword));
}

TEST_F(MessageWriterTest, HostileValuesReadBackOnTheirOwnLines) {
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
TEST_F(MessageWriterTest, AttachmentNamesAndDataCannotBreakTheirBlock) {
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
TEST_F(MessageWriterTest, FilesTooLongForABlockAreLeftOut) {
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
