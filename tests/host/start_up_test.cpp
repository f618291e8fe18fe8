#include "host/start_up.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

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

TEST_F(StartUp, StopsAtTheFirstFailureWithItsMessage) {
  // Each case breaks a fresh installation and names the one error event it expects.
  const struct {
    const char *what;
    std::function<std::string()> breakIt;
  } cases[] = {
      {"no product directory",
       [&] {
         platform::ProfileWriteString("Corvanta", "Directory", "", WinDir() + "/Corvanta/TQVMSERV.INI");
         return std::string("Please start administrator before runnig Corvanta");
       }},
      {"no string file",
       [&] {
         fs::remove(ProductDir() + "/tqstring.ini");
         return "File '" + ProductDir() + "\\tqstring.ini' does not exist. The service cannot be launched";
       }},
      {"no gateway-in",
       [&] {
         SetConfig("Directories", "GatewayIn", "");
         return std::string("Gateway-in-directory cannot be retrieved");
       }},
      {"no gateway-out",
       [&] {
         SetConfig("Directories", "GatewayOut", "");
         return std::string("Gateway-out-directory cannot be retrieved");
       }},
      {"gateway-out missing",
       [&] {
         fs::remove(GatewayOut());
         return "In-Directory '" + GatewayIn() + "' or Out-Directory '" + GatewayOut() + "' does not exist";
       }},
      {"pending blocked by a file",
       [&] {
         WriteFile(GatewayOut() + "/PENDING", "x");
         return "Pending-Directory '" + GatewayOut() + "\\PENDING' could not be created";
       }},
      {"temp blocked by a file",
       [&] {
         WriteFile(ProductDir() + "/TEMP", "x");
         return "Temp-Directory '" + ProductDir() + "\\TEMP' could not be created";
       }},
      {"work directory blocked by a file",
       [&] {
         fs::create_directory(ProductDir() + "/TEMP");
         WriteFile(ProductDir() + "/TEMP/TQVSPOOL", "x");
         return "Temp-Directory '" + ProductDir() + "\\TEMP\\TQVSPOOL' could not be created";
       }},
      {"cover directory two levels deep",
       [&] {
         SetConfig("Directories", "CoverDir", ProductDir() + "/A/B");
         return "Cover-Directory '" + ProductDir() + "/A/B' could not be created";
       }},
      {"attachment directory blocked",
       [&] {
         WriteFile(ProductDir() + "/ATTACH", "x");
         return "Attachment-Directory '" + ProductDir() + "\\ATTACH' could not be created";
       }},
      {"temp-in blocked",
       [&] {
         WriteFile(PathOf("gw/TEMP"), "x");
         return "Temp-In-Directory '" + PathOf("gw/TEMP") + "' could not be created";
       }},
  };
  for (const auto &c : cases) {
    TearDown();
    SetUp();
    const std::string event = c.breakIt();
    EXPECT_EQ(host::Initialise(0, ""), -1) << c.what;
    EXPECT_EQ(Events(), std::vector<std::string>{"1\tCorvanta FAX Service\t" + event}) << c.what;
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
