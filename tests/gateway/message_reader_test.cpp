#include "gateway/message_reader.h"

#include <array>
#include <climits>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/file.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

using namespace std::string_literals;

class MessageReaderTest : public testing::TempDirTest {
 protected:
  // Opens a message of these bytes.
  void OpenMessage(const std::string &bytes, MessageReader &into) {
    WriteFile(MessagePath(), bytes);
    ASSERT_TRUE(into.Open(MessagePath()));
  }
  void OpenMessage(const std::string &bytes) { OpenMessage(bytes, reader); }
  static std::vector<int> CodesToEnd(MessageReader &from) {
    std::vector<int> codes;
    for (int i = 0; i < 100; ++i) {
      codes.push_back(static_cast<int>(from.ReadNext()));
      if (codes.back() == 0) break;
    }
    return codes;
  }
  static std::string SubjectOf(const MessageReader &from) {
    std::array<char, 256> buffer{};
    from.GetSubject(buffer);
    return buffer.data();
  }
  std::string MessagePath() const { return PathOf("SGW1.TMP"); }
  std::string TargetPath() const { return PathOf("target.out"); }
  void ExpectTargetAndRemoveIt(const std::optional<std::string> &bytes) const {
    EXPECT_EQ(Exists(TargetPath()), bytes.has_value());
    if (!bytes) return;
    EXPECT_EQ(ReadFile(TargetPath()), *bytes);
    std::filesystem::remove(TargetPath());
  }

  MessageReader reader;
};

TEST_F(MessageReaderTest, LinesGiveTheirKeywordCodes) {
  const std::string x292(292, 'x'), x246(246, 'x'), x245(245, 'x'), x255(255, 'X');
  struct Case {
    std::string name;
    std::string bytes;
    std::vector<int> codes;
    std::string subject;
  };
  const Case cases[] = {
      {"every acted-on keyword",
       "MAIL FROM:a\r\nRCPT TO:b\r\nSubject:c\r\nCustom-String:d\r\nFAX-Status:2\r\nFAX-StatusInfo:e\r\n"
       "FAX-NumRetries:1\r\nFAX-CallDuration:2\r\nFAX-PagesTransferred:3\r\nFAX-DeliveryTime:4\r\n"
       "File Type:KVDTQVOUT\r\n----beginbody:0\r\n----beginattach:a.pdf:9\r\n",
       {1, 2, 3, 6, 8, 9, 10, 11, 12, 13, 14, 4, 5, 0},
       "c"},
      {"written-only and unknown lines are read past",
       "X-Tnef-Attach:\r\nDATA:\r\nFrom:x\r\nTO:y\r\nDate:1\r\n\r\nnoise\r\n----endbody\r\nSubject:s\r\n",
       {3, 0},
       "s"},
      {"keywords match case-sensitively at the line start",
       "subject:a\r\n Subject:b\r\nMAIL FROM :c\r\n",
       {0},
       ""},
      {"MAPIMAIL.DAT ends the message",
       "Subject:a\r\nMAPIMAIL.DAT:\r\nSubject:b\r\n----beginbody:1\r\n",
       {3, 0},
       "a"},
      {"a later line overwrites", "Subject:a\r\nSubject:b\r\n", {3, 3, 0}, "b"},
      {"an unterminated last line is never seen", "Subject:a\r\nSubject:b", {3, 0}, "a"},
      {"lone CR and LF stay in the line", "Subject:a\rb\nc\r\n", {3, 0}, "a\rb\nc"},
      {"a NUL ends the line", "----beginattach:a.pdf\0:5\r\n"s, {-1, 0}, ""},
      {"attachment lines without colon or length",
       "----beginattach:a.pdf\r\n----beginattach:a.pdf:0\r\n",
       {-1, -1, 0},
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
  for (const Case &c : cases) {
    SCOPED_TRACE(c.name);
    MessageReader fresh;
    OpenMessage(c.bytes, fresh);
    EXPECT_EQ(CodesToEnd(fresh), c.codes);
    EXPECT_EQ(SubjectOf(fresh), c.subject);
  }
}

TEST_F(MessageReaderTest, RecipientIsTheAddressAfterABracketedName) {
  const std::pair<std::string, std::string> cases[] = {
      {"[[['Jane Doe']]]+49 30 1234", "+49 30 1234"},
      {"+49 30 1234", "+49 30 1234"},
      {"[[[Jane]]]a]]]b", "a]]]b"},
      {"Jane]]]+49", "Jane]]]+49"},
  };
  for (const auto &[value, address] : cases) {
    SCOPED_TRACE(value);
    OpenMessage("RCPT TO:" + value + "\r\n");
    ASSERT_EQ(reader.ReadNext(), ReadCode::Recipient);
    std::array<char, 256> name{}, addressBuffer{};
    reader.GetRecipient(name, addressBuffer);
    EXPECT_EQ(std::string(name.data()), address);
    EXPECT_EQ(std::string(addressBuffer.data()), address);
    reader.Close();
  }
}

TEST_F(MessageReaderTest, ValuesAreTakenAsTheyStand) {
  OpenMessage(
      "MAIL FROM: jane\r\nFAX-Status: -12abc\r\nFAX-NumRetries:none\r\nFAX-CallDuration:99999999999\r\n"
      "----beginbody:-1\r\n----beginattach:a:b.pdf:7\r\n");
  EXPECT_EQ(CodesToEnd(reader), (std::vector<int>{1, 8, 10, 11, 4, -1, 0}));
  std::array<char, 256> sender{}, name{};
  reader.GetSender(sender);
  reader.GetAttachmentName(name);
  EXPECT_STREQ(sender.data(), " jane");
  EXPECT_EQ(reader.FaxStatus(), -12);
  EXPECT_EQ(reader.NumRetries(), 0);
  EXPECT_EQ(reader.CallDuration(), INT32_MAX);
  EXPECT_EQ(reader.BodyLength(), 0xFFFFFFFFu);
  EXPECT_STREQ(name.data(), "a");
  EXPECT_EQ(reader.AttachmentLength(), 0u) << "atoi of \"b.pdf:7\"";
}

TEST_F(MessageReaderTest, GettersCutToTheirBuffers) {
  OpenMessage("MAIL FROM:abcdef\r\nCustom-String:ab\0junk\r\nFile Type:JFXTQVOUT\r\n"s);
  CodesToEnd(reader);
  std::array<char, 4> sender;
  reader.GetSender(sender);
  EXPECT_EQ(std::string(sender.data(), 4), "abc\0"s);

  // The whole field is handed out: the value, then NULs, never more than its 256 bytes.
  std::array<char, 300> field;
  field.fill('Z');
  reader.GetCustomString(std::span(field).first(8));
  EXPECT_EQ(std::string(field.data(), 9), "ab\0\0\0\0\0\0Z"s);
  field.fill('Z');
  reader.GetFileTypeField(field);
  EXPECT_EQ(std::string(field.data(), 10), "JFXTQVOUT\0"s);
  EXPECT_EQ(field[255], '\0');
  EXPECT_EQ(field[256], 'Z');
}

TEST_F(MessageReaderTest, OpenRefusesAHeldFileAndASecondFile) {
  WriteFile(MessagePath(), "Subject:a\r\n");
  {
    const std::optional<platform::File> writer = platform::File::OpenExclusive(MessagePath());
    ASSERT_TRUE(writer);
    EXPECT_FALSE(reader.Open(MessagePath()));
  }
  EXPECT_FALSE(reader.Open(PathOf("missing.TMP")));
  ASSERT_TRUE(reader.Open(MessagePath()));
  EXPECT_FALSE(reader.Open(MessagePath()));
  EXPECT_FALSE(platform::File::OpenShared(MessagePath())) << "held without sharing";
}

struct ExtractionCase {
  std::string name;
  std::string block;  // from the "----begin..." line on
  bool extracted;
  std::optional<std::string> target;
};

TEST_F(MessageReaderTest, ExtractBody) {
  const ExtractionCase cases[] = {
      {"empty body", "----beginbody:0\r\n\r\n----endbody\r\n", true, std::nullopt},
      {"blank body", "----beginbody:5\r\n \t\r\n \r\n----endbody\r\n", true, std::nullopt},
      {"text with its CR LF", "----beginbody:5\r\nabc\r\n\r\n----endbody\r\n", true, "abc\r\n"},
      {"only the end line's start counts", "----beginbody:3\r\n a \r\n----endbody and more\r\n", true, " a "},
      {"blanks before text", "----beginbody:5\r\n  \r\nx\r\n----endbody\r\n", true, "  \r\nx"},
      {"wrong end line", "----beginbody:5\r\nabc\r\n\r\nSubject:x\r\n", false, std::nullopt},
      {"blank body with wrong end line", "----beginbody:0\r\n\r\n----endattach\r\n", false, std::nullopt},
      {"unterminated end line", "----beginbody:3\r\nabc\r\n----endbody", false, std::nullopt},
      {"data cut short", "----beginbody:50\r\nabc\r\n----endbody\r\n", false, std::nullopt},
      {"blanks cut short", "----beginbody:50\r\n  \r\n", false, std::nullopt},
      {"negative length", "----beginbody:-1\r\nabc\r\n----endbody\r\n", false, std::nullopt},
  };
  for (const ExtractionCase &c : cases) {
    SCOPED_TRACE(c.name);
    OpenMessage(c.block);
    ASSERT_EQ(reader.ReadNext(), ReadCode::Body);
    EXPECT_EQ(reader.ExtractBody(TargetPath()), c.extracted);
    ExpectTargetAndRemoveIt(c.target);
    reader.Close();
  }
}

TEST_F(MessageReaderTest, ExtractAttachment) {
  const std::string binary = "\0\r\n----endattach\r\n\xff"s;
  const ExtractionCase cases[] = {
      {"binary data", "----beginattach:a.bin:19\r\n" + binary + "\r\n----endattach\r\n", true, binary},
      {"blanks are data", "----beginattach:a.txt:2\r\n  \r\n----endattach\r\n", true, "  "},
      {"wrong end line", "----beginattach:a.bin:3\r\nabc\r\n----endbody\r\n", false, std::nullopt},
      {"length beyond the file", "----beginattach:a.bin:300\r\nabc\r\n----endattach\r\n", false,
       std::nullopt},
      {"negative length", "----beginattach:a.bin:-3\r\nabc\r\n----endattach\r\n", false, std::nullopt},
  };
  for (const ExtractionCase &c : cases) {
    SCOPED_TRACE(c.name);
    OpenMessage(c.block);
    ASSERT_EQ(reader.ReadNext(), ReadCode::Attachment);
    EXPECT_EQ(reader.ExtractAttachment(TargetPath()), c.extracted);
    ExpectTargetAndRemoveIt(c.target);
    reader.Close();
  }
}

TEST_F(MessageReaderTest, ExtractionReplacesAnExistingTarget) {
  WriteFile(TargetPath(), "an older and longer file");
  OpenMessage("----beginbody:3\r\nnew\r\n----endbody\r\n");
  ASSERT_EQ(reader.ReadNext(), ReadCode::Body);
  EXPECT_TRUE(reader.ExtractBody(TargetPath()));
  EXPECT_EQ(ReadFile(TargetPath()), "new");
}

}  // namespace
}  // namespace tqv
