// MessageWriter then MessageReader on arbitrary values: whatever the header values, the
// recipients, the body text and the attachment's name and data, the reader must find exactly the
// lines the writer was given, each value up to its first NUL, its CR and LF as blanks and cut to
// its line. Aborts on any other line read, any value read otherwise, or any block not read whole.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "common/text_limits.h"
#include "config/service_state.h"
#include "fuzz_support.h"
#include "gateway/header_keywords.h"
#include "gateway/message_reader.h"
#include "gateway/message_writer.h"
#include "host/entry_points.h"

namespace {

namespace fs = std::filesystem;

using tqv::HeaderKeyword;
using tqv::ReadCode;
using tqv::fuzz::Fail;

constexpr std::size_t kMaxRecipients = 6;

// The installation, set up and started on first use.
const fs::path &Sandbox() {
  static const bool started = [] {
    const fs::path &sandbox = tqv::fuzz::Sandbox();
    for (const char *sub : {"product/COVER", "gw/in", "gw/out", "files", "read"})
      fs::create_directories(sandbox / sub);
    tqv::fuzz::InstallProduct(sandbox / "product",
                              "[Directories]\r\nGatewayIn=" + (sandbox / "gw/in").string() +
                                  "\r\nGatewayOut=" + (sandbox / "gw/out").string() +
                                  "\r\nCoverDir=" + (sandbox / "product/COVER").string() + "\r\n");
    tqv::fuzz::WriteBytes(sandbox / "product/tqstring.ini", "[English]\r\n");
    if (tqv::host::Initialise(0, "") != 0) Fail("the library does not start in the sandbox");
    return true;
  }();
  (void)started;
  return tqv::fuzz::Sandbox();
}

// What the reader must find for a value given to a setter: the writer's rule, stated on its own.
std::string Expected(std::string value, HeaderKeyword keyword, std::size_t kept = tqv::kMaxName) {
  value.resize(std::min({value.size(), kept, value.find('\0'), tqv::HeaderValueRoom(keyword)}));
  std::replace(value.begin(), value.end(), '\r', ' ');
  std::replace(value.begin(), value.end(), '\n', ' ');
  return value;
}

// The reader drops a display name written as "[[[" name "]]]" before the address.
std::string ExpectedRecipient(const std::string &value) {
  std::string read = Expected(value, HeaderKeyword::RcptTo);
  const std::size_t close = read.find("]]]");
  if (close != std::string::npos && read.find("[[[") != std::string::npos) read.erase(0, close + 3);
  return read;
}

bool AllBlank(const std::string &text) {
  return text.find_first_not_of("\r\n \t") == std::string::npos;
}

struct Given {
  std::string sender, subject, statusInfo, fileType, customString, body;
  std::vector<std::string> recipients;
  std::int32_t status = 0, retries = 0, duration = 0, pages = 0, deliveryTime = 0;
  std::string attachmentName;  // empty: none
  std::string attachmentData;
};

Given Consume(FuzzedDataProvider &input) {
  Given given;
  given.sender = input.ConsumeRandomLengthString(400);
  given.subject = input.ConsumeRandomLengthString(400);
  given.statusInfo = input.ConsumeRandomLengthString(400);
  given.fileType = input.ConsumeRandomLengthString(400);
  given.customString = input.ConsumeRandomLengthString(400);
  const std::size_t recipients = input.ConsumeIntegralInRange<std::size_t>(0, kMaxRecipients);
  for (std::size_t i = 0; i < recipients; ++i)
    given.recipients.push_back(input.ConsumeRandomLengthString(400));
  for (std::int32_t *number :
       {&given.status, &given.retries, &given.duration, &given.pages, &given.deliveryTime})
    *number = input.ConsumeIntegral<std::int32_t>();
  given.body = input.ConsumeRandomLengthString(1000);
  // A name the file system takes: no separator of either system, no NUL, not a directory's name.
  std::string name = input.ConsumeRandomLengthString(300);
  std::erase_if(name, [](char c) { return c == '/' || c == '\\' || c == '\0'; });
  name.resize(std::min(name.size(), tqv::kMaxPath - (Sandbox() / "files/").string().size()));
  if (name != "." && name != "..") given.attachmentName = name;
  given.attachmentData = input.ConsumeRemainingBytesAsString();
  return given;
}

std::string Text(const std::array<char, 256> &field) {
  return std::string(field.data());
}

void Check(bool holds, const char *what) {
  if (!holds) Fail(what);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const Given given = Consume(input);
  const fs::path attachment = Sandbox() / "files" / given.attachmentName;
  bool attached = false;
  if (!given.attachmentName.empty()) tqv::fuzz::WriteBytes(attachment, given.attachmentData);
  const bool attachable = !given.attachmentName.empty() && fs::is_regular_file(attachment);

  {
    tqv::MessageWriter writer;
    Check(writer.Create(), "no message file could be created");
    writer.SetSender(given.sender);
    writer.SetSubject(given.subject);
    writer.SetStatusInfo(given.statusInfo);
    writer.SetFileType(given.fileType);
    writer.SetCustomString(given.customString);
    for (const std::string &recipient : given.recipients)
      writer.AddRecipient(recipient);
    writer.SetFaxStatus(given.status);
    writer.SetNumRetries(given.retries);
    writer.SetCallDuration(given.duration);
    writer.SetPagesTransferred(given.pages);
    writer.SetDeliveryTime(given.deliveryTime);
    writer.AddBody(given.body);
    if (attachable) attached = writer.AddAttachment(attachment.string());
    Check(writer.Close(), "the message could not be written whole");
  }
  if (!given.attachmentName.empty()) fs::remove(attachment);
  Check(attached == (attachable && !given.attachmentData.empty()),
        "an attachment was refused or taken wrongly");

  std::vector<fs::path> messages;
  for (const fs::directory_entry &entry : fs::directory_iterator(Sandbox() / "gw/in"))
    messages.push_back(entry.path());
  Check(messages.size() == 1, "not exactly one message was written");

  std::map<ReadCode, int> counts;
  std::vector<std::string> recipients;
  std::string body = "(none)", attachmentName, attachmentData = "(none)";
  tqv::MessageReader reader;
  Check(reader.Open(messages[0].string()), "the message cannot be opened");
  const fs::path block = Sandbox() / "read/block";
  for (ReadCode code; (code = reader.ReadNext()) != ReadCode::End;) {
    ++counts[code];
    if (code == ReadCode::Recipient) {
      std::array<char, 256> name{}, address{};
      reader.GetRecipient(name, address);
      recipients.push_back(Text(address));
    } else if (code == ReadCode::Body) {
      Check(reader.ExtractBody(block.string()), "the body was not read whole");
      body = fs::exists(block) ? tqv::fuzz::ReadBytes(block) : "";
    } else if (code == ReadCode::Attachment) {
      Check(reader.ExtractAttachment(block.string()), "the attachment was not read whole");
      std::array<char, tqv::kMaxAttachmentName + 1> name{};
      reader.GetAttachmentName(name);
      attachmentName = name.data();
      attachmentData = tqv::fuzz::ReadBytes(block);
    }
    fs::remove(block);
  }
  reader.Close();
  fs::remove(messages[0]);

  // Every line the reader acts on once, one per recipient, one block of each kind written.
  std::map<ReadCode, int> expectedCounts;
  for (const ReadCode code :
       {ReadCode::FileType, ReadCode::Sender, ReadCode::Subject, ReadCode::CustomString, ReadCode::FaxStatus,
        ReadCode::FaxStatusInfo, ReadCode::NumRetries, ReadCode::CallDuration, ReadCode::PagesTransferred,
        ReadCode::DeliveryTime, ReadCode::Body})
    expectedCounts[code] = 1;
  if (!given.recipients.empty())
    expectedCounts[ReadCode::Recipient] = static_cast<int>(given.recipients.size());
  if (attached) expectedCounts[ReadCode::Attachment] = 1;
  Check(counts == expectedCounts, "the lines read are not the lines written");

  std::vector<std::string> expectedRecipients;
  for (const std::string &recipient : given.recipients)
    expectedRecipients.push_back(ExpectedRecipient(recipient));
  Check(recipients == expectedRecipients, "the recipients differ");

  std::array<char, 256> field{};
  reader.GetSender(field);
  Check(Text(field) == Expected(given.sender, HeaderKeyword::MailFrom), "the sender differs");
  reader.GetSubject(field);
  Check(Text(field) == Expected(given.subject, HeaderKeyword::Subject), "the subject differs");
  reader.GetStatusInfo(field);
  Check(Text(field) == Expected(given.statusInfo, HeaderKeyword::FaxStatusInfo), "the status text differs");
  reader.GetFileTypeField(field);
  Check(Text(field) == Expected(given.fileType, HeaderKeyword::FileType), "the file type differs");
  reader.GetCustomString(field);
  Check(Text(field) == Expected(given.customString, HeaderKeyword::CustomString, tqv::kMaxCustomStringBytes),
        "the custom string differs");
  Check(reader.FaxStatus() == given.status && reader.NumRetries() == given.retries &&
            reader.CallDuration() == given.duration && reader.PagesTransferred() == given.pages &&
            reader.DeliveryTime() == given.deliveryTime,
        "a number differs");

  const std::string writtenBody = given.body.empty() ? "" : given.body + "\r\n";
  Check(body == (AllBlank(writtenBody) ? "" : writtenBody), "the body differs");
  if (attached) {
    // The name travels without its colons and line ends, cut to its line.
    std::string name = given.attachmentName;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == ':' || c == '\r' || c == '\n'; }, '_');
    const std::size_t room = tqv::HeaderValueRoom(HeaderKeyword::BeginAttach) -
                             (":" + std::to_string(given.attachmentData.size())).size();
    Check(attachmentName == name.substr(0, room), "the attachment name differs");
    Check(attachmentData == given.attachmentData, "the attachment data differs");
  }
  return 0;
}
