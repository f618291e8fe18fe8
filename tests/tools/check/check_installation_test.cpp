// `tqv check` against a whole installation: a sound one gives no finding, and each fault gives
// exactly one, also when several faults meet in one installation.
#include <filesystem>
#include <string>
#include <vector>

#include "platform/profile.h"
#include "support/installation.h"
#include "support/platform_backend.h"
#include "tqv/check/check_installation.h"
#include "tqv/check/check_string_file.h"

namespace tqv::tool {
namespace {

class CheckInstallationTest : public testing::InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    std::filesystem::copy_file(TQV_DATA_DIR "/tqstring.ini", ProductDir() + "/tqstring.ini",
                               std::filesystem::copy_options::overwrite_existing);
    SetConfig("Phone Properties", "InternationalPrefix", "00");
    SetConfig("Phone Properties", "CountryCode", "49");
    SetConfig("Phone Properties", "AreaCode", "89");
    SetConfig("JFAX Dial", "Dial0", "+44");
    SetConfig("JFAX Dial", "Domain", "jfax.example");
    WriteFile(PathOf("logo.rtf"), "{\\rtf1}");
    SetAdmin("Recipient List", "ann", "Ann Smith");
    SetAdmin("Recipients Properties", "ann", "7425");
    SetAdmin("Routing", "CSID_00000", "ann,+49 89 1234");
    SetAdmin("ann", "C_00000", "COVERPGE," + PathOf("logo.rtf"));
    SetAdmin("ann", "A_00000", "Prices," + PathOf("logo.rtf"));
  }

  void SetAdmin(std::string_view section, std::string_view key, std::string_view value) const {
    platform::ProfileWriteString(section, key, value, ProductDir() + "/tqvadmin.ini");
  }

  // The text of every finding, with its severity in front.
  static std::vector<std::string> Findings() {
    std::vector<std::string> texts;
    for (const Finding &finding : CheckInstallation().findings)
      texts.push_back(std::string(SeverityName(finding.severity)) + ": " + finding.text);
    return texts;
  }
};

TEST_F(CheckInstallationTest, SoundInstallationHasNoFindingAndDirectoriesStartUpCreatesAreFine) {
  const CheckReport report = CheckInstallation();
  EXPECT_EQ(RenderCheckText(report, false), "");
  EXPECT_FALSE(report.HasError());
  EXPECT_EQ(RenderCheckJson(report), "[]\n");
  // Pending, temp, work, cover, voicemail, attachment and temp-in do not exist yet: start-up makes them.
  ASSERT_EQ(report.directories.size(), 9u);
  EXPECT_TRUE(report.directories[0].exists);
  EXPECT_TRUE(report.directories[0].writable);
  EXPECT_TRUE(testing::kWin32Backend || !report.directories[0].fileSystem.empty());
  EXPECT_FALSE(report.directories[2].exists);
}

TEST_F(CheckInstallationTest, EachFaultOfABrokenInstallationIsReportedOnce) {
  // The string file: one text gone from every language, one format taking the wrong value.
  platform::ProfileWriteString("English", "T422", std::nullopt, ProductDir() + "/tqstring.ini");
  platform::ProfileWriteString("German", "T422", std::nullopt, ProductDir() + "/tqstring.ini");
  platform::ProfileWriteString("German", "T716", "Zu viele: %s", ProductDir() + "/tqstring.ini");
  SetConfig("Misc", "Language", "GE");
  std::filesystem::remove(GatewayOut());
  SetConfig("Directories", "CoverDir", PathOf("nowhere") + "\\COVER");
  SetConfig("Directories", "Voicemail", "");
  WriteFile(ProductDir() + "/ATTACH", "a file where a directory belongs");
  SetConfig("Phone Properties", "AreaCode", "89x");
  SetConfig("JFAX Dial", "Dial2", "+33");
  SetConfig("JFAX Dial", "Domain", "");
  SetAdmin("Recipient List", "bob", "Bob");
  SetAdmin("Routing", "DTMF_00000", "bob,12");
  SetAdmin("Routing", "DTMF_00001", "no comma here");
  SetAdmin("Routing", "DTMF_00002", "ann,13");
  SetAdmin("Routing", "OCRKW_00000", "carl,invoice");
  SetAdmin("ann", "A_00001", "Gone," + PathOf("gone.tif"));
  SetAdmin("bob", "T_00001", "Letter," + PathOf("logo.rtf"));

  const std::vector<std::string> expected = {
      "error: string file: no text in 'GE' or English for T422",
      "warning: string file: T716 in 'GE' should take %d",
      "error: gateway-out directory",
      "error: cover directory",
      "warning: [Directories] Voicemail is not set",
      "error: attachment directory",
      "warning: [Phone Properties] AreaCode '89x'",
      "warning: [JFAX Dial] Dial2 is never used: Dial1 ends the list",
      "error: [JFAX Dial] Domain is not set",
      "error: [Routing] DTMF_00001=no comma here has no comma",
      "warning: user 'bob' has routing entries (DTMF_00000) but not the SendFaxes property",
      "warning: [Routing] OCRKW_00000 routes to 'carl', who is not in [Recipient List]",
      "warning: user 'ann', attachment 'Gone' (A_00001): stored file",
      "warning: user 'bob', T_00000 is missing",
  };
  const std::vector<std::string> findings = Findings();
  for (const std::string &fragment : expected) {
    int matches = 0;
    for (const std::string &finding : findings)
      matches += finding.starts_with(fragment) ? 1 : 0;
    EXPECT_EQ(matches, 1) << fragment;
  }
  EXPECT_EQ(findings.size(), expected.size()) << ::testing::PrintToString(findings);
}

// Without the ground a later check stands on, only the first missing piece is reported.
TEST_F(CheckInstallationTest, MissingMachineFileOrProductDirectoryStopsTheCheckWithOneError) {
  const std::string machineFile = WinDir() + "/Corvanta/TQVMSERV.INI";
  platform::ProfileWriteString("Corvanta", "Directory", PathOf("absent"), machineFile);
  EXPECT_EQ(Findings(), std::vector<std::string>{"error: product directory '" + PathOf("absent") +
                                                 "' does not exist: the library will not start"});
  platform::ProfileWriteString("Corvanta", "Directory", "", machineFile);
  EXPECT_EQ(Findings().size(), 1u);
  std::filesystem::remove(machineFile);
  const std::vector<std::string> findings = Findings();
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_TRUE(findings[0].starts_with("error: machine file")) << findings[0];
}

TEST(CheckStringFile, FormatConversionsNameEachValueAFormatTakes) {
  const struct {
    const char *format, *conversions;
  } cases[] = {
      {"plain text", ""}, {"%d of %d", "dd"}, {"%-5i%%", "d"}, {"no '%.40s'", "s"},
      {"%ld", "d"},       {"%x", "?"},        {"100%", "?"},   {"%*d", "?"},
  };
  for (const auto &c : cases)
    EXPECT_EQ(FormatConversions(c.format), c.conversions) << c.format;
}

}  // namespace
}  // namespace tqv::tool
