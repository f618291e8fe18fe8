// The mail bridge both ways on realistic messages: mail -> gateway file -> the library's reader,
// and the library's writer -> gateway file -> mail through a stand-in sendmail.
#ifdef TQV_MAIL_BRIDGE

#include <gmime/gmime.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "config/service_state.h"
#include "gateway/message_writer.h"
#include "platform/file.h"
#include "support/installation.h"
#include "tqv/mail/mail_in.h"
#include "tqv/mail/mail_out.h"
#include "tqv/mail/mail_text.h"

namespace tqv::tool {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

class MailBridge : public testing::InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    CurrentService().gatewayInDirectory = GatewayIn();
    // Records its arguments and the message; exits with the code in the file "exit", if any.
    WriteFile(PathOf("sendmail"), "#!/bin/sh\necho \"$@\" >" + PathOf("args") + "\ncat >" + PathOf("sent") +
                                      "\nexit $(cat " + PathOf("exit") + " 2>/dev/null || echo 0)\n");
    fs::permissions(PathOf("sendmail"), fs::perms::owner_all);
  }
  PassCounts MailOut(std::string &log) const {
    PassCounts counts;
    std::ostringstream lines;
    EXPECT_TRUE(RunMailOutPass({GatewayIn(), "fax.example", PathOf("sendmail"), true, 1}, lines, counts));
    log = lines.str();
    return counts;
  }
};

struct MailCase {
  std::string name;
  std::string mime;
  MailEnvelope envelope;
  GatewayMail expected;
};

std::vector<MailCase> RealWorldMails() {
  std::vector<MailCase> cases;
  // Thunderbird style: text and HTML alternatives, an ISO-8859-1 subject, a PDF whose RFC 2231
  // name carries an umlaut and a path, and a scan whose name holds a colon and a control character.
  cases.push_back(
      {"alternative with attachments",
       "From: Anna Berger <anna@example.com>\n"
       "To: Sales <089123456@fax.example>\n"
       "Subject: =?ISO-8859-1?Q?Preisliste_f=FCr_M=E4rz?=\n"
       "Message-ID: <4f2a.17@mail.example.com>\n"
       "MIME-Version: 1.0\n"
       "Content-Type: multipart/mixed; boundary=\"outer\"\n\n"
       "--outer\nContent-Type: multipart/alternative; boundary=\"inner\"\n\n"
       "--inner\nContent-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: quoted-printable\n\n"
       "Gr=C3=BC=C3=9Fe, 5 =E2=82=AC =E2=9C=93\nZeile zwei\n"
       "--inner\nContent-Type: text/html; charset=utf-8\n\n<p>Gr&uuml;&szlig;e</p>\n--inner--\n"
       "--outer\nContent-Type: application/pdf\n"
       "Content-Disposition: attachment; filename*=UTF-8''..%2F..%2Fetc%2FPreisliste%20M%C3%A4rz.pdf\n"
       "Content-Transfer-Encoding: base64\n\nJVBERi0xLjQKJeLjz9MK\n"
       "--outer\nContent-Type: image/tiff; name=\"scan\x01:1.tif\"\nContent-Transfer-Encoding: base64\n\n"
       "SUkqAAgAAAA=\n--outer--\n",
       {"anna@example.com", {"089123456@fax.example", "+49 30 1234@fax.example"}},
       {"anna@example.com",
        {"089123456@fax.example", "+49 30 1234@fax.example"},
        "Preisliste f\xFCr M\xE4rz",
        "<4f2a.17@mail.example.com>",
        "Gr\xFC\xDF"
        "e, 5 \x80 ?\r\nZeile zwei",
        {{"Preisliste M\xE4rz.pdf", "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n"}, {"scan__1.tif", "II*\0\x08\0\0\0"s}},
        0,
        ""}});
  // Outlook style HTML only with a logo it shows inline, raw UTF-8 in the subject; no envelope:
  // From, To and Cc stand in.
  cases.push_back({"html only",
                   "From: \"Bob\" <bob@example.org>\nTo: 07114242@fax.example\nCc: FAXADMIN@fax.example\n"
                   "Subject: Caf\xC3\xA9 \xE2\x80\x93 Men\xC3\xBC\n"
                   "Content-Type: multipart/related; boundary=r\n\n--r\n"
                   "Content-Type: text/html; charset=\"utf-8\"\n\n"
                   "<html><head><style>p {color: red}</style></head><body><p>Hello&nbsp;&amp; welcome,</p>\n"
                   "<p>the   menu\nfollows.<br>Caf&#233;</p><img src=\"cid:logo@x\"></body></html>\n"
                   "--r\nContent-Type: image/png; name=image001.png\nContent-ID: <logo@x>\n\nPNG\n--r--\n",
                   {},
                   {"bob@example.org",
                    {"07114242@fax.example", "FAXADMIN@fax.example"},
                    "Caf\xE9 \x96 Men\xFC",
                    "",
                    "Hello & welcome,\r\n\r\nthe menu follows.\r\nCaf\xE9",
                    {},
                    0,
                    ""}});
  // A plain Latin-1 message in 8 bits, with an unknown charset on its attachment's text.
  cases.push_back({"latin-1 plain",
                   "From: claire@example.net\nSubject: =?utf-8?B?w4lsw6hWZQ==?=\n"
                   "Content-Type: multipart/mixed; boundary=b\n\n--b\n"
                   "Content-Type: text/plain; charset=iso-8859-1\nContent-Transfer-Encoding: 8bit\n\n"
                   "Tr\xE8s bien\r\n--b\nContent-Type: text/plain; charset=x-unknown; name=notes.txt\n\n"
                   "\xFFok\n--b--\n",
                   {"claire@example.net", {"123@fax.example"}},
                   {"claire@example.net",
                    {"123@fax.example"},
                    "\xC9l\xE8Ve",
                    "",
                    "Tr\xE8s bien\r\n",
                    {{"notes.txt", "\xFFok"}},
                    0,
                    ""}});
  return cases;
}

TEST_F(MailBridge, RealWorldMailsReachTheReaderAsSent) {
  // Left by a writer that died long ago; the next one clears it away.
  fs::create_directories(GatewayOut() + "/MAILTMP");
  WriteFile(GatewayOut() + "/MAILTMP/mailOLD123", "X-Tnef-Attach:\r\nMAIL FROM:half");
  fs::last_write_time(GatewayOut() + "/MAILTMP/mailOLD123",
                      fs::file_time_type::clock::now() - std::chrono::hours(2));
  for (const MailCase &c : RealWorldMails()) {
    SCOPED_TRACE(c.name);
    std::string error;
    const std::optional<GatewayMail> mail = GatewayMailFromMime(c.mime, c.envelope, error);
    ASSERT_TRUE(mail) << error;
    const std::optional<std::string> name = PlaceGatewayFile(GatewayOut(), FormatGatewayMail(*mail), error);
    ASSERT_TRUE(name) << error;
    EXPECT_EQ(FileNames(GatewayOut()), std::vector<std::string>{*name});
    EXPECT_EQ(FileNames(GatewayOut() + "/MAILTMP"), std::vector<std::string>{});

    bool busy = true;
    const std::optional<GatewayMail> read = ReadGatewayFile(GatewayOut() + "/" + *name, Dir(), busy, error);
    ASSERT_TRUE(read) << error;
    EXPECT_EQ(read->sender, c.expected.sender);
    EXPECT_EQ(read->recipients, c.expected.recipients);
    EXPECT_EQ(read->subject, c.expected.subject);
    EXPECT_EQ(read->customString, c.expected.customString);
    // The reader hands back the CR LF that the block length counts after the text.
    EXPECT_EQ(read->body, c.expected.body + "\r\n");
    ASSERT_EQ(read->attachments.size(), c.expected.attachments.size());
    for (std::size_t i = 0; i < read->attachments.size(); ++i) {
      EXPECT_EQ(read->attachments[i].name, c.expected.attachments[i].name);
      EXPECT_EQ(read->attachments[i].bytes, c.expected.attachments[i].bytes);
    }
    fs::remove(GatewayOut() + "/" + *name);
  }
}

// What the converter would drop silently, or cannot read, is bounced with a reason instead; no
// file is left behind for any of it.
TEST_F(MailBridge, MailThatCannotBeFaxedIsBouncedWithoutAFile) {
  std::string manyAttachments = "From: a@b.example\nContent-Type: multipart/mixed; boundary=b\n\n";
  for (std::size_t i = 0; i <= MaxMailAttachments(); ++i)
    manyAttachments += "--b\nContent-Type: application/pdf; name=f" + std::to_string(i) + ".pdf\n\nx\n";
  manyAttachments += "--b--\n";
  const std::vector<std::string> manyRecipients(MaxMailRecipients() + 1, "1@fax.example");
  const struct {
    std::string mime;
    MailEnvelope envelope;
    int exitCode;
    std::string reason;
  } cases[] = {
      {"", {"a@b.example", {"1@fax.example"}}, kExitDataError, "empty message"},
      {"Subject: x\n\nbody\n", {"", {"1@fax.example"}}, kExitDataError, "no sender"},
      {"From: a@b.example\n\nbody\n", {}, kExitDataError, "no recipient"},
      {manyAttachments, {"", {"1@fax.example"}}, kExitDataError, "more than 15 attachments"},
      {"From: a@b.example\n\nx\n", {"", manyRecipients}, kExitDataError, "more than 1023 recipients"},
      {"From: a@b.example\n\nx\n",
       {std::string(300, 'a') + "@b.example", {"1@fax.example"}},
       kExitDataError,
       "sender address too long"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.reason);
    std::istringstream in(c.mime);
    std::ostringstream err;
    EXPECT_EQ(RunMailIn(GatewayOut(), c.envelope, in, err), c.exitCode);
    const std::string reason = err.str();
    EXPECT_NE(reason.find(c.reason), std::string::npos) << reason;
    EXPECT_EQ(std::count(reason.begin(), reason.end(), '\n'), 1);
  }
  // A directory that cannot take the file is a temporary failure: the MTA keeps the mail.
  WriteFile(GatewayOut() + "/MAILTMP", "in the way");
  std::istringstream in("From: a@b.example\n\nx\n");
  std::ostringstream err;
  EXPECT_EQ(RunMailIn(GatewayOut(), {"", {"1@fax.example"}}, in, err), kExitTemporaryFailure);
  EXPECT_EQ(FileNames(GatewayOut()), std::vector<std::string>{"MAILTMP"});
}

// A delivery report as the library writes it arrives as a reply to the request, text in UTF-8
// and each document with its own type and bytes.
TEST_F(MailBridge, ReportFromTheWriterArrivesAsMail) {
  const std::string tiff = "II*\0\x08\0\0\0\xFF\x00\r\n----endattach\r\n"s;
  WriteFile(PathOf("FAX00001.FAX"), tiff);
  WriteFile(PathOf("notes.txt"),
            "Gr\xFC\xDF"
            "e\r\n");
  MessageWriter writer;
  ASSERT_TRUE(writer.Create());
  writer.SetSender("089123456@fax.example");
  writer.AddRecipient("anna");
  writer.SetSubject(
      "Fax \xFC"
      "bermittelt: 089123456");
  writer.SetCustomString("<4f2a.17@mail.example.com>");
  writer.SetFaxStatus(2);
  writer.SetStatusInfo("OK \x80");
  writer.AddBody("Seiten: 2\r\nDauer: 45 s\r\n");
  writer.AddAttachment(PathOf("FAX00001.FAX"));
  writer.AddAttachment(PathOf("notes.txt"));
  writer.Close();

  std::string log;
  const PassCounts counts = MailOut(log);
  EXPECT_EQ(counts.sent, 1) << log;
  EXPECT_EQ(FileNames(GatewayIn()), std::vector<std::string>{});
  EXPECT_EQ(ReadFile(PathOf("args")), "-i -f <> -- anna@fax.example\n");

  StartGMime();
  const std::string sent = ReadFile(PathOf("sent"));
  GMimeStream *stream = g_mime_stream_mem_new_with_buffer(sent.data(), sent.size());
  GMimeParser *parser = g_mime_parser_new_with_stream(stream);
  GMimeMessage *message = g_mime_parser_construct_message(parser, nullptr);
  ASSERT_NE(message, nullptr);
  GMimeObject *headers = GMIME_OBJECT(message);
  EXPECT_STREQ(g_mime_message_get_subject(message),
               "Fax \xC3\xBC"
               "bermittelt: 089123456");
  EXPECT_STREQ(g_mime_object_get_header(headers, "In-Reply-To"), "<4f2a.17@mail.example.com>");
  EXPECT_STREQ(g_mime_object_get_header(headers, "X-Fax-Status"), "2");
  EXPECT_NE(sent.find("From: 089123456@fax.example\n"), std::string::npos) << sent;
  EXPECT_NE(sent.find("To: anna@fax.example\n"), std::string::npos);

  GMimeMultipart *parts = GMIME_MULTIPART(g_mime_message_get_mime_part(message));
  ASSERT_EQ(g_mime_multipart_get_count(parts), 3);
  char *text = g_mime_text_part_get_text(GMIME_TEXT_PART(g_mime_multipart_get_part(parts, 0)));
  EXPECT_STREQ(text, "Seiten: 2\nDauer: 45 s\n\n");
  g_free(text);
  const struct {
    const char *type;
    const char *name;
    std::string bytes;
  } expected[] = {{"image/tiff", "FAX00001.FAX", tiff},
                  {"text/plain", "notes.txt",
                   "Gr\xFC\xDF"
                   "e\r\n"}};
  for (int i = 0; i < 2; ++i) {
    GMimePart *part = GMIME_PART(g_mime_multipart_get_part(parts, i + 1));
    char *type = g_mime_content_type_get_mime_type(g_mime_object_get_content_type(GMIME_OBJECT(part)));
    EXPECT_STREQ(type, expected[i].type);
    g_free(type);
    EXPECT_STREQ(g_mime_part_get_filename(part), expected[i].name);
    GMimeStream *bytes = g_mime_stream_mem_new();
    g_mime_data_wrapper_write_to_stream(g_mime_part_get_content(part), bytes);
    GByteArray *array = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(bytes));
    EXPECT_EQ(std::string(reinterpret_cast<char *>(array->data), array->len), expected[i].bytes);
    g_object_unref(bytes);
  }
  g_object_unref(message);
  g_object_unref(parser);
  g_object_unref(stream);
}

// A file is deleted only once sendmail took it; what will never go out moves to failed/, what may
// go out later stays, and a file its writer still holds is not touched.
TEST_F(MailBridge, FilesStayUntilSentAndDamagedOnesMoveAside) {
  const std::string report =
      testing::Crlf("MAIL FROM:FAXADMIN\nRCPT TO:anna@example.com\n----beginbody:4\nok\n\n----endbody\n");
  WriteFile(GatewayIn() + "/SGW1.TMP", report);
  WriteFile(GatewayIn() + "/SGW2.TMP", testing::Crlf("MAIL FROM:x\nRCPT TO:y\n----beginbody:90\nshort\n"));
  WriteFile(GatewayIn() + "/SGW3.TMP", testing::Crlf("MAIL FROM:x\n----beginbody:0\n\n----endbody\n"));
  WriteFile(GatewayIn() + "/SGW4.TMP", testing::Crlf("RCPT TO:Anna Berger\n"));
  WriteFile(GatewayIn() + "/SGW5.TMP", report);
  const std::optional<platform::File> held =
      platform::File::Open(GatewayIn() + "/SGW5.TMP", platform::FileAccess::Write,
                           platform::FileSharing::None, platform::FileCreation::OpenExisting);
  ASSERT_TRUE(held);

  WriteFile(PathOf("exit"), "75");
  std::string log;
  PassCounts counts = MailOut(log);
  EXPECT_EQ(counts.kept, 1) << log;
  EXPECT_EQ(counts.failed, 3) << log;
  EXPECT_NE(log.find("failed: SGW2.TMP moved to failed/: body block"), std::string::npos) << log;
  EXPECT_NE(log.find("failed: SGW3.TMP moved to failed/: no recipient"), std::string::npos) << log;
  EXPECT_NE(log.find("failed: SGW4.TMP moved to failed/: recipient \"Anna Berger\" is no mail address"),
            std::string::npos)
      << log;
  EXPECT_EQ(FileNames(GatewayIn()), (std::vector<std::string>{"SGW1.TMP", "SGW5.TMP"}));
  EXPECT_EQ(FileNames(GatewayIn() + "/failed"),
            (std::vector<std::string>{"SGW2.TMP", "SGW3.TMP", "SGW4.TMP"}));
  EXPECT_NE(ReadFile(PathOf("sent")).find("From: FAXADMIN@fax.example"), std::string::npos);

  // Past the retry time a temporary refusal is final too; a refusal for good is final at once.
  const auto old = fs::file_time_type::clock::now() - std::chrono::hours(24 * (kMaxRetryDays + 1));
  fs::last_write_time(GatewayIn() + "/SGW1.TMP", old);
  counts = MailOut(log);
  EXPECT_EQ(counts.failed, 1) << log;
  WriteFile(GatewayIn() + "/SGW2.TMP", report);
  WriteFile(PathOf("exit"), "67");
  counts = MailOut(log);
  EXPECT_NE(log.find("failed: SGW2.TMP moved to failed/: sendmail refused it with exit code 67"),
            std::string::npos)
      << log;
  EXPECT_EQ(FileNames(GatewayIn() + "/failed"),
            (std::vector<std::string>{"SGW1.TMP", "SGW2.TMP", "SGW2.TMP.1", "SGW3.TMP", "SGW4.TMP"}));
  EXPECT_EQ(FileNames(GatewayIn()), std::vector<std::string>{"SGW5.TMP"});
}

}  // namespace
}  // namespace tqv::tool

#endif  // TQV_MAIL_BRIDGE
