// What MessageWriter writes, MessageReader reads back: both sides of the one keyword table.
#include <array>
#include <string>
#include <vector>

#include "gateway/gateway_fixture.h"
#include "gateway/message_reader.h"
#include "gateway/message_writer.h"

namespace tqv {
namespace {

using namespace std::string_literals;

class MessageRoundTrip : public testing::GatewayTest {};

std::string AllByteValues() {
  std::string bytes;
  for (int i = 0; i < 256; ++i)
    bytes += static_cast<char>(i);
  return bytes;
}

TEST_F(MessageRoundTrip, ReaderGetsBackWhatTheWriterWrote) {
  const std::string binary = AllByteValues() + "\r\n----endattach\r\n" + AllByteValues();
  WriteFile(PathOf("scan.tif"), binary);
  WriteFile(PathOf("notes.txt"), "from a file\r\n");

  MessageWriter writer;
  ASSERT_TRUE(writer.Create());
  writer.SetSender("jane@example.com");
  writer.AddRecipient("+49 30 1234");
  writer.AddRecipient("bob@example.com");
  writer.SetSubject("Your fax");
  writer.SetCustomString("ticket 7");
  writer.SetFaxStatus(-2);
  writer.SetStatusInfo("Busy");
  writer.SetNumRetries(3);
  writer.SetCallDuration(45);
  writer.SetPagesTransferred(2);
  writer.SetDeliveryTime(1700000000);
  writer.SetFileType("KVDTQVOUT");
  writer.AddBodyBuffer("buffered\r\n");
  writer.AddBody("Line one\r\nLine two", PathOf("notes.txt"));
  writer.AddBody("");
  ASSERT_TRUE(writer.AddAttachment(PathOf("scan.tif")));
  writer.Close();

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

  // The buffered body stands before the header lines; "Date:" and "From:" are read past.
  EXPECT_EQ(codes, (std::vector<int>{4, 14, 1, 2, 2, 3, 6, 8, 9, 10, 11, 12, 13, 4, 4, 5}));
  EXPECT_EQ(recipients, (std::vector<std::string>{"+49 30 1234", "bob@example.com"}));
  EXPECT_EQ(bodies, (std::vector<std::string>{"buffered\r\n\r\n", "Line one\r\nLine twofrom a file\r\n\r\n",
                                              "(none)"}));
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

}  // namespace
}  // namespace tqv
