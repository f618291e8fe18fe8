#include "gateway/message_writer.h"

#include <optional>
#include <string>

#include "gateway/gateway_fixture.h"
#include "gateway/message_counter.h"
#include "platform/file.h"
#include "platform/profile.h"

namespace tqv {
namespace {

// Lines 2 to 13 of a message whose writer was given nothing.
constexpr std::string_view kEmptyHeaderLines =
    "File Type:\r\nMAIL FROM:\r\nDATA:\r\nX-Message-Class:IPM.NOTE\r\nDate:0\r\nX-Message-ID:\r\n"
    "External-Received-By:\r\nExternal-Received-At:\r\nExternal-Attempted-By:\r\nExternal-Deferred-At:\r\n"
    "Internal-Received-By:\r\nInternal-Received-At:\r\nInternal-Attempted-By:\r\nInternal-Deferred-At:\r\n"
    "From:\r\nSubject:\r\nPriority:Normal\r\nImportance:Normal\r\nCustom-String:\r\nFAX-Status:0\r\n"
    "FAX-StatusInfo:\r\nFAX-NumRetries:0\r\nFAX-CallDuration:0\r\nFAX-PagesTransferred:0\r\n"
    "FAX-DeliveryTime:0\r\n";

class MessageWriterTest : public testing::GatewayTest {
 protected:
  std::string EmptyMessageWith(std::string_view blocks) const {
    return "X-Tnef-Attach:\r\n" + std::string(kEmptyHeaderLines) + std::string(blocks);
  }
};

TEST_F(MessageWriterTest, WritesHeaderLinesInOrderThenBlocks) {
  WriteFile(PathOf("report.txt"), "0123456789");
  MessageWriter writer;
  ASSERT_TRUE(writer.Create());
  writer.SetFileType("JFXTQVOUT");
  writer.SetSender("sender@example.com");
  writer.AddRecipient("+49 30 1234");
  writer.AddRecipient("bob@example.com");
  writer.SetSubject("Fax delivered");
  writer.SetCustomString(std::string_view("ref-42\0garbage", 14));
  writer.SetFaxStatus(2);
  writer.SetStatusInfo("SUCCESS");
  writer.SetNumRetries(1);
  writer.SetCallDuration(63);
  writer.SetPagesTransferred(3);
  writer.SetDeliveryTime(946684800);
  EXPECT_TRUE(writer.AddBody("abc"));
  EXPECT_TRUE(writer.AddAttachment(Dir() + "\\report.txt"));
  writer.SetSubject("too late to be written");
  writer.Close();

  EXPECT_EQ(
      ReadFile(MessageIn(0)),
      "X-Tnef-Attach:\r\nFile Type:JFXTQVOUT\r\nMAIL FROM:sender@example.com\r\nRCPT TO:+49 30 1234\r\n"
      "RCPT TO:bob@example.com\r\nDATA:\r\nX-Message-Class:IPM.NOTE\r\nDate:946684800\r\nX-Message-ID:\r\n"
      "External-Received-By:\r\nExternal-Received-At:\r\nExternal-Attempted-By:\r\nExternal-Deferred-At:\r\n"
      "Internal-Received-By:\r\nInternal-Received-At:\r\nInternal-Attempted-By:\r\nInternal-Deferred-At:\r\n"
      "From:sender@example.com\r\nTO:+49 30 1234\r\nTO:bob@example.com\r\nSubject:Fax delivered\r\n"
      "Priority:Normal\r\nImportance:Normal\r\nCustom-String:ref-42\r\nFAX-Status:2\r\n"
      "FAX-StatusInfo:SUCCESS\r\nFAX-NumRetries:1\r\nFAX-CallDuration:63\r\nFAX-PagesTransferred:3\r\n"
      "FAX-DeliveryTime:946684800\r\n"
      "----beginbody:5\r\nabc\r\n\r\n----endbody\r\n"
      "----beginattach:report.txt:10\r\n0123456789\r\n----endattach\r\n");
}

TEST_F(MessageWriterTest, CloseWritesHeaderLinesOfAMessageWithoutBlocks) {
  MessageWriter writer;
  ASSERT_TRUE(writer.Create());
  writer.Close();
  EXPECT_EQ(ReadFile(MessageIn(0)), EmptyMessageWith(""));
}

TEST_F(MessageWriterTest, BodyBufferStandsBeforeTheHeaderLines) {
  MessageWriter writer;
  ASSERT_TRUE(writer.Create());
  EXPECT_FALSE(writer.AddBodyBuffer(""));
  EXPECT_TRUE(writer.AddBodyBuffer(" "));
  writer.Close();
  EXPECT_EQ(ReadFile(MessageIn(0)),
            "X-Tnef-Attach:\r\n----beginbody:3\r\n \r\n\r\n----endbody\r\n" + std::string(kEmptyHeaderLines));
}

TEST_F(MessageWriterTest, BodyLengthCountsTextFileAndClosingLineEnd) {
  WriteFile(PathOf("body.txt"), "DEF");
  struct Case {
    std::string_view text;
    std::optional<std::string> file;
    std::string_view block;
  };
  const Case cases[] = {
      {"", std::nullopt, "----beginbody:0\r\n\r\n----endbody\r\n"},
      {"abc", std::nullopt, "----beginbody:5\r\nabc\r\n\r\n----endbody\r\n"},
      {"abc", PathOf("body.txt"), "----beginbody:8\r\nabcDEF\r\n\r\n----endbody\r\n"},
      {"", PathOf("body.txt"), "----beginbody:5\r\nDEF\r\n\r\n----endbody\r\n"},
      {"abc", PathOf("missing.txt"), "----beginbody:5\r\nabc\r\n\r\n----endbody\r\n"},
  };
  for (int i = 0; i < static_cast<int>(std::size(cases)); ++i) {
    const Case &c = cases[i];
    SCOPED_TRACE(c.block);
    MessageWriter writer;
    ASSERT_TRUE(writer.Create());
    EXPECT_TRUE(writer.AddBody(c.text, c.file));
    writer.Close();
    EXPECT_EQ(ReadFile(MessageIn(i)), EmptyMessageWith(c.block));
  }
}

TEST_F(MessageWriterTest, RefusedAttachmentsWriteNoBlockButTheHeaderLines) {
  WriteFile(PathOf("empty.pdf"), "");
  WriteFile(PathOf("held.pdf"), "data");
  const std::optional<platform::File> holder = platform::File::OpenExclusive(PathOf("held.pdf"));
  ASSERT_TRUE(holder);

  MessageWriter writer;
  ASSERT_TRUE(writer.Create());
  EXPECT_FALSE(writer.AddAttachment(""));
  EXPECT_FALSE(writer.AddAttachment(PathOf("missing.pdf")));
  EXPECT_FALSE(writer.AddAttachment(PathOf("empty.pdf")));
  EXPECT_FALSE(writer.AddAttachment(PathOf("held.pdf")));
  writer.Close();
  EXPECT_EQ(ReadFile(MessageIn(0)), EmptyMessageWith(""));
}

TEST_F(MessageWriterTest, FileIsHeldWithoutSharingUntilClose) {
  MessageWriter writer;
  ASSERT_TRUE(writer.Create());
  EXPECT_FALSE(platform::File::OpenShared(MessageIn(0)));
  EXPECT_FALSE(writer.Create()) << "a second Create while the file is open";
  writer.Close();
  EXPECT_TRUE(platform::File::OpenExclusive(MessageIn(0)));
  EXPECT_FALSE(Exists(MessageIn(1))) << "the refused Create made no file";
}

TEST_F(MessageWriterTest, CreateAfterARecipientFails) {
  MessageWriter writer;
  writer.AddRecipient("early@example.com");
  EXPECT_FALSE(writer.Create());
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

TEST_F(MessageWriterTest, CreateWritesIntoTheChosenGatewayDirectory) {
  MessageWriter writer;
  ASSERT_TRUE(writer.Create(GatewayDirection::Out));
  writer.Close();
  EXPECT_EQ(ReadFile(GatewayOut() + "/SGW0.TMP"), EmptyMessageWith(""));

  CurrentService().gatewayInDirectory = PathOf("missing");
  EXPECT_FALSE(writer.Create());
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

TEST_F(MessageWriterTest, MessageFilesAreNamedByTheCounter) {
  WriteFile(CounterFile(), "[In]\r\nId=99998\r\n");
  for (int number : {99998, 0}) {
    MessageWriter writer;
    ASSERT_TRUE(writer.Create());
    writer.Close();
    EXPECT_TRUE(Exists(MessageIn(number)));
  }
}

}  // namespace
}  // namespace tqv
