// Attacks on the tqv tool from those who may only drop files or send mail: received-fax requests
// that name files outside their directory or links, and mail from senders who did not log in.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include "support/platform_backend.h"
#include "support/temp_dir.h"
#include "tools/shared/receive_dir_test.h"
#ifdef TQV_MAIL_BRIDGE
#include "tqv/mail/mail_in.h"
#endif

namespace tqv::tool {
namespace {

namespace fs = std::filesystem;

// Nothing was handed over, the file outside is untouched and the request is gone with a reason.
class ReceiveDirSecurity : public testing::ReceiveDirTest {
 protected:
  void SetUp() override {
    ReceiveDirTest::SetUp();
    WriteFile(PathOf("secret.tif"), "II*private");
  }
  void ExpectRefused(const std::string &request) {
    EXPECT_TRUE(faxes_.empty()) << request;
    EXPECT_EQ("II*private", ReadFile(PathOf("secret.tif"))) << request;
    EXPECT_FALSE(Exists(PathOf("receive/" + request))) << request;
    EXPECT_NE(out_.str().find("request " + request + ": "), std::string::npos) << out_.str();
  }
};

TEST_F(ReceiveDirSecurity, NamesThatLeaveTheDirectoryAreRefusedAndNothingOutsideIsDeleted) {
  const std::vector<std::pair<std::string, std::string>> requests = {
      {"UP.RCV", "Image=../secret.tif\r\n"},
      {"BACK.RCV", "Image=..\\secret.tif\r\n"},
      {"ABS.RCV", "Image=" + PathOf("secret.tif") + "\r\n"},
      {"DRIVE.RCV", "Image=C:secret.tif\r\n"},
      {"DOTS.RCV", "Image=..\r\n"},
      {"OCR.RCV", "Image=IN.TIF\r\nOcr=../secret.tif\r\n"},
  };
  for (const auto &[name, text] : requests) {
    WriteFile(PathOf("receive/IN.TIF"), "II*inside");
    WriteFile(PathOf("receive/" + name), text);
    EXPECT_EQ(0, Play()) << name;
    ExpectRefused(name);
  }
}

TEST_F(ReceiveDirSecurity, LinksAndSpecialFilesAreRefusedUnreadAndWithoutWaiting) {
  TQV_SKIP_ON_WIN32("links and FIFOs as POSIX makes them");
#if !defined(_WIN32)
  fs::create_symlink(PathOf("secret.tif"), PathOf("receive/LINK.TIF"));
  WriteFile(PathOf("receive/LINK.RCV"), "Image=LINK.TIF\r\n");
  EXPECT_EQ(0, Play());
  ExpectRefused("LINK.RCV");
  EXPECT_FALSE(fs::is_symlink(fs::symlink_status(PathOf("receive/LINK.TIF")))) << "the link itself goes";

  // A request that is itself a link to a file elsewhere is not read.
  WriteFile(PathOf("elsewhere.txt"), "Image=IN.TIF\r\n");
  WriteFile(PathOf("receive/IN.TIF"), "II*inside");
  fs::create_symlink(PathOf("elsewhere.txt"), PathOf("receive/AWAY.RCV"));
  EXPECT_EQ(0, Play());
  ExpectRefused("AWAY.RCV");
  EXPECT_TRUE(Exists(PathOf("elsewhere.txt")));

  // A FIFO blocks whoever opens it for reading until a writer comes; none ever does.
  ASSERT_EQ(0, ::mkfifo(PathOf("receive/PIPE.TIF").c_str(), 0600));
  WriteFile(PathOf("receive/PIPE.RCV"), "Image=PIPE.TIF\r\n");
  EXPECT_EQ(0, Play());
  ExpectRefused("PIPE.RCV");
  ASSERT_EQ(0, ::mkfifo(PathOf("receive/FIFO.RCV").c_str(), 0600));
  EXPECT_EQ(0, Play());
  ExpectRefused("FIFO.RCV");

  // The file layer takes a backslash for a separator: this name must not open ../OUT.RCV.
  fs::create_directories(PathOf("receive/a"));
  WriteFile(PathOf("OUT.RCV"), "Image=IN.TIF\r\n");
  WriteFile(PathOf("receive/IN.TIF"), "II*inside");
  WriteFile(PathOf("receive/a\\..\\..\\OUT.RCV"), "Image=NONE.TIF\r\n");
  EXPECT_EQ(0, Play());
  ExpectRefused("a\\..\\..\\OUT.RCV");
  EXPECT_TRUE(Exists(PathOf("OUT.RCV")));
#endif
}

#ifdef TQV_MAIL_BRIDGE

// The envelope sender is whatever the submitter typed; only the MTA's login or the client's
// address says who sent a mail.
class MailSenderSecurity : public testing::TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    fs::create_directories(PathOf("out"));
  }
  std::size_t Messages() const { return FileNames(PathOf("out")).size(); }
};

std::optional<SenderLoginMap> LoginMap(std::string_view text) {
  std::string error;
  std::optional<SenderLoginMap> map = SenderLoginMap::Parse(text, error);
  EXPECT_TRUE(map.has_value()) << error;
  return map;
}

// What the MTA said of a submission: its login and client address, with the trusted networks
// and the login map that apply.
SenderCheck Said(std::string login, std::string client, std::vector<const char *> trusted = {},
                 std::optional<SenderLoginMap> map = std::nullopt) {
  SenderCheck check{true, {}, std::move(map), std::move(login), std::move(client)};
  for (const char *network : trusted)
    check.trustedClients.push_back(*ClientNetwork::Parse(network));
  return check;
}

TEST_F(MailSenderSecurity, OnlyTheSendersOwnLoginOrATrustedClientLetsItsMailIn) {
  const auto map = LoginMap("anna@example.test fax-anna, backup  # her own\n@example.test office\n");
  const struct {
    std::string name, envelopeSender;
    SenderCheck check;
    int exitCode;
  } cases[] = {
      {"no check: anyone, as before", "anna@example.test", {}, 0},
      {"forged, no login", "anna@example.test", Said("", "203.0.113.9"), kExitNoPermission},
      {"forged, nothing known", "anna@example.test", Said("", ""), kExitNoPermission},
      {"own login, domain in other case", "anna@EXAMPLE.test", Said("anna@example.TEST", ""), 0},
      {"local part in other case", "Anna@example.test", Said("anna@example.test", ""), kExitNoPermission},
      {"someone else's login", "anna@example.test", Said("mallory@example.test", ""), kExitNoPermission},
      {"bare login, no map", "anna@example.test", Said("anna", ""), kExitNoPermission},
      {"null sender falls back to From:", "<>", Said("mallory@example.test", ""), kExitNoPermission},
      {"listed client", "anna@example.test", Said("", "192.0.2.77", {"192.0.2.0/24"}), 0},
      {"client outside the list", "anna@example.test", Said("", "192.0.3.1", {"192.0.2.0/24"}),
       kExitNoPermission},
      {"listed IPv6 client", "anna@example.test", Said("", "2001:db8:7::5", {"2001:db8::/32"}), 0},
      {"IPv4 client in mapped form", "anna@example.test", Said("", "::ffff:192.0.2.9", {"192.0.2.9"}), 0},
      {"map: login for the address", "anna@example.test", Said("backup", "", {}, map), 0},
      {"map: login for the domain", "bob@Example.Test", Said("office", "", {}, map), 0},
      {"map: address entry wins over domain", "anna@example.test", Said("office", "", {}, map),
       kExitNoPermission},
      {"map: login not listed", "bob@example.test", Said("fax-anna", "", {}, map), kExitNoPermission},
  };
  const std::string mime =
      "From: Anna <anna@example.test>\nTo: 089123456@fax.example\nSubject: x\n\nPlease fax.\n";
  for (const auto &c : cases) {
    SCOPED_TRACE(c.name);
    const std::size_t before = Messages();
    std::istringstream in(mime);
    std::ostringstream err;
    EXPECT_EQ(c.exitCode,
              RunMailIn(PathOf("out"), {c.envelopeSender, {"089123456@fax.example"}}, in, err, c.check))
        << err.str();
    EXPECT_EQ(before + (c.exitCode == 0 ? 1 : 0), Messages());
    if (c.exitCode != 0) {
      const std::string reason = err.str();
      EXPECT_EQ(0u, reason.rfind("tqv mail in: ", 0)) << reason;
      EXPECT_EQ(1, std::count(reason.begin(), reason.end(), '\n')) << reason;
    }
  }
}

TEST_F(MailSenderSecurity, MalformedClientListsAndLoginMapsAreRefused) {
  for (const char *bad :
       {"", "192.0.2.0/33", "192.0.2.256", "2001:db8::/129", "192.0.2.0/", "example.test", "1.2.3.4/x"})
    EXPECT_FALSE(ClientNetwork::Parse(bad).has_value()) << bad;
  EXPECT_FALSE(ClientNetwork::Parse("192.0.2.0/24")->Contains("")) << "no address is no client";
  EXPECT_TRUE(ClientNetwork::Parse("[2001:db8::1]")->Contains("2001:db8::1"));
  std::string error;
  EXPECT_FALSE(SenderLoginMap::Parse("anna@example.test\n", error).has_value());
  EXPECT_FALSE(SenderLoginMap::Parse("anna anna\n", error).has_value());
}

// As Postfix runs it: "--sasl-user=${sasl_username}" is "--sasl-user=" for a submitter without a login.
TEST_F(MailSenderSecurity, CommandRefusesAForgedSenderWithExitCode77) {
  WriteFile(PathOf("mail.eml"), "From: anna@example.test\nTo: 1@fax.example\nSubject: x\n\nhi\n");
  const auto run = [&](const std::string &arguments) {
    return testing::RunProgram(
        "/bin/sh",
        {"-c", std::string(TQV_TOOL_PATH) + " mail in --gateway-out " + PathOf("out") +
                   " --sender=anna@example.test " + arguments + " -- 1@fax.example <" + PathOf("mail.eml")},
        Dir());
  };
  testing::ProgramOutcome outcome = run("--require-auth --sasl-user= --client-address=203.0.113.9");
  EXPECT_EQ(kExitNoPermission, outcome.exitCode) << outcome.err;
  EXPECT_NE(outcome.err.find("did not log in"), std::string::npos) << outcome.err;
  EXPECT_EQ(0u, Messages());

  outcome = run("--require-auth --sasl-user=anna@example.test --client-address=");
  EXPECT_EQ(0, outcome.exitCode) << outcome.err;
  outcome = run("--sasl-user= --client-address=203.0.113.9 --require-auth --trusted-client 203.0.113.0/24");
  EXPECT_EQ(0, outcome.exitCode) << outcome.err;
  EXPECT_EQ(2u, Messages());
}

#endif

}  // namespace
}  // namespace tqv::tool
