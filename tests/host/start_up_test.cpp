#include "host/start_up.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "config/service_state.h"
#include "host/entry_points.h"
#include "platform/beep_and_sleep.h"
#include "platform/profile.h"
#include "support/installation.h"

namespace tqv {
namespace {

namespace fs = std::filesystem;

class StartUp : public testing::InstallationTest {};

TEST_F(StartUp, CreatesItsDirectoriesOneLevelEach) {
  ASSERT_EQ(host::Initialise(1, "C:\\TEXTJOBS"), 0);
  EXPECT_TRUE(Events().empty());
  for (const char *directory : {"gw/out/PENDING", "product/TEMP/TQVSPOOL", "product/COVER", "product/VOICE",
                                "product/ATTACH", "gw/TEMP"}) {
    EXPECT_TRUE(fs::is_directory(PathOf(directory))) << directory;
  }
  const ServiceState &service = CurrentService();
  EXPECT_EQ(service.textFileFlag, 1);
  EXPECT_EQ(service.textFileDirectory, "C:\\TEXTJOBS");
  EXPECT_EQ(service.pendingDirectory, GatewayOut() + "\\PENDING");
  EXPECT_EQ(service.tempInDirectory, PathOf("gw/TEMP"));
  // The saved-file limits exist as keys from the first start on.
  EXPECT_EQ(platform::ProfileLookup("Saved Fax Attachments", "MaxFiles", ConfigFile()), "10");
  EXPECT_EQ(platform::ProfileLookup("Saved Coverpage Attachments", "MaxFiles", ConfigFile()), "10");
}

// Each case breaks a fresh installation by a [Directories] setting, a file removed or a file in a
// directory's way (none of these: the machine file names no product directory) and names the one
// error event it expects; {P} is the product directory, {G} the gateway directories' parent.
TEST_F(StartUp, StopsAtTheFirstFailureWithItsMessage) {
  const struct {
    const char *what, *setting, *value, *removed, *blocked, *event;
  } cases[] = {
      {"no product directory", nullptr, nullptr, nullptr, nullptr,
       "Please start administrator before runnig Corvanta"},
      {"no string file", nullptr, nullptr, "product/tqstring.ini", nullptr,
       "File '{P}\\tqstring.ini' does not exist. The service cannot be launched"},
      {"no gateway-in", "GatewayIn", "", nullptr, nullptr, "Gateway-in-directory cannot be retrieved"},
      {"no gateway-out", "GatewayOut", "", nullptr, nullptr, "Gateway-out-directory cannot be retrieved"},
      {"gateway-out missing", nullptr, nullptr, "gw/out", nullptr,
       "In-Directory '{G}/in' or Out-Directory '{G}/out' does not exist"},
      {"pending blocked", nullptr, nullptr, nullptr, "gw/out/PENDING",
       "Pending-Directory '{G}/out\\PENDING' could not be created"},
      {"temp blocked", nullptr, nullptr, nullptr, "product/TEMP",
       "Temp-Directory '{P}\\TEMP' could not be created"},
      {"work directory blocked", nullptr, nullptr, nullptr, "product/TEMP/TQVSPOOL",
       "Temp-Directory '{P}\\TEMP\\TQVSPOOL' could not be created"},
      {"cover directory two levels deep", "CoverDir", "{P}/A/B", nullptr, nullptr,
       "Cover-Directory '{P}/A/B' could not be created"},
      {"attachment directory blocked", nullptr, nullptr, nullptr, "product/ATTACH",
       "Attachment-Directory '{P}\\ATTACH' could not be created"},
      {"temp-in blocked", nullptr, nullptr, nullptr, "gw/TEMP",
       "Temp-In-Directory '{G}/TEMP' could not be created"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    TearDown();
    SetUp();
    const auto expand = [&](std::string text) {
      for (const auto &[mark, path] : {std::pair{"{P}", ProductDir()}, std::pair{"{G}", PathOf("gw")}}) {
        for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark))
          text.replace(at, 3, path);
      }
      return text;
    };
    if (c.setting) SetConfig("Directories", c.setting, expand(c.value));
    if (c.removed) fs::remove(PathOf(c.removed));
    if (c.blocked) {
      fs::create_directories(fs::path(PathOf(c.blocked)).parent_path());
      WriteFile(PathOf(c.blocked), "x");
    }
    if (!c.setting && !c.removed && !c.blocked)
      platform::ProfileWriteString("Corvanta", "Directory", "", WinDir() + "/Corvanta/TQVMSERV.INI");
    EXPECT_EQ(host::Initialise(0, ""), -1);
    EXPECT_EQ(Events(), std::vector<std::string>{"1\tCorvanta FAX Service\t" + expand(c.event)});
  }
}

TEST_F(StartUp, AMissingVoicemailDirectoryOnlyWarns) {
  SetConfig("Directories", "Voicemail", ProductDir() + "/A/B");
  EXPECT_EQ(host::Initialise(0, ""), 0);
  EXPECT_EQ(Events(),
            std::vector<std::string>{"2\tCorvanta FAX Service\tVoicemail directory '" + ProductDir() +
                                     "/A/B' doers not exist. Voicemail cannot be used"});
}

TEST_F(StartUp, TempInDirectorySitsBesideGatewayIn) {
  EXPECT_EQ(host::TempInDirectory("C:\\GW\\IN"), "C:\\GW\\TEMP");
  EXPECT_EQ(host::TempInDirectory("C:\\GW\\IN\\"), "C:\\GW\\IN\\TEMP");
  EXPECT_EQ(host::TempInDirectory("/srv/gw/in"), "/srv/gw/TEMP");
  EXPECT_TRUE(Events().empty());
  int beeps = 0;
  platform::SetBeepAndSleepHooks([&] { ++beeps; }, [](std::uint32_t) {});
  EXPECT_EQ(host::TempInDirectory("GWIN"), "GWINTEMP");
  EXPECT_EQ(beeps, 4);
  ASSERT_EQ(Events().size(), 1u);
  EXPECT_EQ(Events()[0], "1\tCORVANTA\tAssertion failed: 'TQVSPOOL', line 286");
}

}  // namespace
}  // namespace tqv
