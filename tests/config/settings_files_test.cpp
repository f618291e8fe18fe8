#include "config/settings_files.h"

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "platform/profile.h"
#include "support/platform_backend.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

class SettingsFiles : public testing::TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    ResetSettingsPathsForTesting();
    std::filesystem::create_directories(ProductDir());
  }
  void TearDown() override {
    ResetSettingsPathsForTesting();
    TempDirTest::TearDown();
  }

  std::string ProductDir() const { return PathOf("product"); }

  // Points the machine file at a product directory, as the administration program does.
  void Install(std::string_view productDirectory) const {
    std::filesystem::create_directories(WinDir() + "/Corvanta");
    platform::ProfileWriteString("Corvanta", "Directory", productDirectory,
                                 WinDir() + "/Corvanta/TQVMSERV.INI");
  }

  // No value removes the key.
  void SetConfig(std::string_view section, std::string_view key,
                 std::optional<std::string_view> value) const {
    platform::ProfileWriteString(section, key, value, ConfigFilePath());
  }
  std::optional<std::string> ConfigValue(std::string_view section, std::string_view key) const {
    return platform::ProfileLookup(section, key, ConfigFilePath());
  }
};

TEST_F(SettingsFiles, MachineFileFolderIsCreatedOneLevelOnly) {
  EXPECT_EQ(MachineFilePath(), WinDir() + "\\Corvanta\\TQVMSERV.INI");
  EXPECT_TRUE(std::filesystem::is_directory(WinDir() + "/Corvanta"));

  TQV_SKIP_ON_WIN32("the system's Windows directory cannot be moved");
  ResetSettingsPathsForTesting();
  const std::string missingWindows = PathOf("missing/windows");
  tqv::testing::SetEnvironment("TQVSPOOL_WINDIR", missingWindows.c_str());
  EXPECT_EQ(MachineFilePath(), missingWindows + "\\Corvanta\\TQVMSERV.INI");
  EXPECT_FALSE(Exists(PathOf("missing")));
}

TEST_F(SettingsFiles, ConfigPathIsWorkedOutOnceUntilResetWithOrWithoutTrailingSeparator) {
  for (const std::string suffix : {"", "\\"}) {
    ResetSettingsPathsForTesting();
    Install(ProductDir() + suffix);
    EXPECT_EQ(ConfigFilePath(), ProductDir() + "\\tqvconfg.ini") << "suffix " << suffix;
  }
  Install(PathOf("other"));
  EXPECT_EQ(ConfigFilePath(), ProductDir() + "\\tqvconfg.ini");
  // The product directory itself is read at the moment of use.
  EXPECT_EQ(GetProductDirectory(), PathOf("other"));
  ResetSettingsPathsForTesting();
  EXPECT_EQ(ConfigFilePath(), PathOf("other") + "\\tqvconfg.ini");
}

TEST_F(SettingsFiles, NumbersAndSwitchesGiveTheirDefaultAndWriteTheEffectiveValueBack) {
  Install(ProductDir());
  struct Setting {
    std::string section;
    const char *key;
    std::function<std::int32_t()> read;
    std::int32_t fallback;  // -1: a switch, on by default and written back as 1 or 0
  };
  std::vector<Setting> settings = {
      {"Fax Attachments", "MaxSize", GetFaxAttachmentMaxSize, 5000},
      {"Fax Attachments", "CheckFormat", GetFaxAttachmentCheckFormat, -1},
  };
  for (const auto &[kind, name] :
       {std::pair{SavedFileKind::Coverpage, "Coverpage"}, std::pair{SavedFileKind::Template, "Template"},
        std::pair{SavedFileKind::Fax, "Fax"}}) {
    const std::string section = std::string("Saved ") + name + " Attachments";
    settings.push_back({section, "MaxFiles", [kind] { return GetSavedMaxFiles(kind); }, 10});
    settings.push_back({section, "MaxSize", [kind] { return GetSavedMaxSize(kind); }, 2000});
    settings.push_back({section, "CheckFormat", [kind] { return GetSavedCheckFormat(kind); }, -1});
  }
  // Stored value (none: key missing), the number read (none: the default), the switch read.
  const std::tuple<std::optional<std::string>, std::optional<std::int32_t>, bool> values[] = {
      {std::nullopt, std::nullopt, true}, {"37", 37, true}, {" -4 files", -4, true}, {"none", 0, false}};
  for (const Setting &setting : settings) {
    for (const auto &[stored, number, on] : values) {
      const std::string label = setting.section + "/" + setting.key + "=" + stored.value_or("(missing)");
      SetConfig(setting.section, setting.key, stored);
      // The effective value, as the integer profile reader makes it, replaces what was there.
      const std::int32_t expected = setting.fallback == -1 ? on : number.value_or(setting.fallback);
      EXPECT_EQ(setting.read(), expected) << label;
      EXPECT_EQ(ConfigValue(setting.section, setting.key), std::to_string(expected)) << label;
    }
  }
}

TEST_F(SettingsFiles, TextsAreCutToTheirLimitAndOnlyLanguageIsWrittenBack) {
  Install(ProductDir());
  EXPECT_EQ(GetGatewayInDirectory("C:\\IN"), "C:\\IN");
  EXPECT_EQ(GetJfaxDomain(), kDefaultJfaxDomain);
  EXPECT_FALSE(GetDebugScheduling());
  EXPECT_FALSE(Exists(ProductDir() + "/tqvconfg.ini"));
  EXPECT_EQ(GetLanguage(), "");
  EXPECT_EQ(ConfigValue("Misc", "Language"), "");

  const std::string longValue(400, 'x');
  SetConfig("Directories", "GatewayIn", longValue);
  EXPECT_EQ(GetGatewayInDirectory("C:\\IN"), longValue.substr(0, 259));
  SetConfig("Misc", "Language", longValue);
  EXPECT_EQ(GetLanguage(), longValue.substr(0, 46));
}

TEST_F(SettingsFiles, DialKeyIsTheMagnitudeOfTheIndex) {
  Install(ProductDir());
  SetConfig("JFAX Dial", "Dial0", "0044*");
  SetConfig("JFAX Dial", "Dial12", "001*");
  SetConfig("JFAX Dial", "Dial2147483648", "edge");
  const std::pair<std::int32_t, const char *> cases[] = {
      {0, "0044*"}, {-12, "001*"}, {13, "default"}, {std::numeric_limits<std::int32_t>::min(), "edge"}};
  for (const auto &[index, expected] : cases)
    EXPECT_EQ(GetJfaxDial(index, "default"), expected) << index;
}

TEST_F(SettingsFiles, IntranetCharactersTakeTheFirstAndWriteTheValueBack) {
  Install(ProductDir());
  // Stored value (none: key missing), the character read (none: the default), the value written back.
  const std::tuple<std::optional<std::string>, std::optional<char>, std::optional<std::string>> values[] = {
      {std::nullopt, std::nullopt, std::nullopt},
      {"-+", '-', "-+"},
      {"", '\0', ""},  // present but empty: no character at all, and it stays empty
      {"#abcdefgh", '#', "#abcde"},
  };
  for (const auto &[key, read, defaultCharacter] :
       {std::tuple{"SpacePlaceholder", &GetSpacePlaceholder, '_'},
        std::tuple{"NameCompanyFaxSeparator", &GetNameCompanyFaxSeparator, '.'}}) {
    for (const auto &[stored, character, written] : values) {
      SetConfig("Intranet", key, stored);
      const char expected = character.value_or(defaultCharacter);
      EXPECT_EQ(read(), expected) << key << "=" << stored.value_or("(missing)");
      EXPECT_EQ(ConfigValue("Intranet", key), written.value_or(std::string(1, expected))) << key;
    }
  }
}

}  // namespace
}  // namespace tqv
