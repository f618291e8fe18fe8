#include "config/settings_files.h"

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <string>

#include "platform/profile.h"
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
  std::string MachineFile() const { return WinDir() + "/Corvanta/TQVMSERV.INI"; }

  // Points the machine file at a product directory, as the administration program does.
  void Install(std::string_view productDirectory) const {
    std::filesystem::create_directories(WinDir() + "/Corvanta");
    platform::ProfileWriteString("Corvanta", "Directory", productDirectory, MachineFile());
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

TEST_F(SettingsFiles, MachineFileLivesInACorvantaFolderCreatedOnFirstUse) {
  Install(ProductDir());
  std::filesystem::remove_all(WinDir() + "/Corvanta");

  EXPECT_EQ(MachineFilePath(), WinDir() + "\\Corvanta\\TQVMSERV.INI");
  EXPECT_TRUE(std::filesystem::is_directory(WinDir() + "/Corvanta"));
}

TEST_F(SettingsFiles, CorvantaFolderIsCreatedOneLevelOnly) {
  const std::string missingWindows = PathOf("missing/windows");
  setenv("TQVSPOOL_WINDIR", missingWindows.c_str(), 1);

  EXPECT_EQ(MachineFilePath(), missingWindows + "\\Corvanta\\TQVMSERV.INI");
  EXPECT_FALSE(Exists(PathOf("missing")));
}

TEST_F(SettingsFiles, ConfigFileIsInTheProductDirectoryWithOrWithoutTrailingSeparator) {
  for (const std::string suffix : {"", "\\"}) {
    ResetSettingsPathsForTesting();
    Install(ProductDir() + suffix);
    EXPECT_EQ(ConfigFilePath(), ProductDir() + "\\tqvconfg.ini") << "suffix " << suffix;
  }
}

TEST_F(SettingsFiles, PathsAreWorkedOutOnceUntilReset) {
  Install(ProductDir());
  const std::string first = ConfigFilePath();

  const std::string otherProduct = PathOf("other");
  Install(otherProduct);
  EXPECT_EQ(ConfigFilePath(), first);
  // The product directory itself is read at the moment of use.
  EXPECT_EQ(GetProductDirectory(), otherProduct);

  ResetSettingsPathsForTesting();
  EXPECT_EQ(ConfigFilePath(), otherProduct + "\\tqvconfg.ini");
}

TEST_F(SettingsFiles, DerivedNamesIgnoreATrailingSeparator) {
  for (const char *product : {"C:\\TQV", "C:\\TQV\\"}) {
    const std::string base = std::string(product).substr(0, 6);
    EXPECT_EQ(StringFilePath(product), base + "\\tqstring.ini") << product;
    EXPECT_EQ(AttachmentDirectory(product), base + "\\ATTACH") << product;
    EXPECT_EQ(WorkDirectory(product), base + "\\TEMP\\TQVSPOOL") << product;
    EXPECT_EQ(AdminDatabasePath(product), base + "\\tqvadmin.ini") << product;
  }
}

TEST_F(SettingsFiles, MissingSavedLimitIsWrittenWithItsDefault) {
  Install(ProductDir());
  WriteFile(ProductDir() + "/tqvconfg.ini", "[Misc]\r\nMailSystem=Exchange\r\n");

  EXPECT_EQ(GetSavedMaxFiles(SavedFileKind::Fax), 10);
  EXPECT_EQ(ReadFile(ProductDir() + "/tqvconfg.ini"),
            "[Misc]\r\nMailSystem=Exchange\r\n\r\n[Saved Fax Attachments]\r\nMaxFiles=10\r\n");
}

struct NumberSetting {
  const char *section;
  const char *key;
  std::int32_t defaultValue;
  std::function<std::int32_t()> read;
};

TEST_F(SettingsFiles, NumbersGiveTheirDefaultAndAreWrittenBack) {
  Install(ProductDir());
  const NumberSetting settings[] = {
      {"Saved Coverpage Attachments", "MaxFiles", 10,
       [] { return GetSavedMaxFiles(SavedFileKind::Coverpage); }},
      {"Saved Template Attachments", "MaxFiles", 10,
       [] { return GetSavedMaxFiles(SavedFileKind::Template); }},
      {"Saved Fax Attachments", "MaxFiles", 10, [] { return GetSavedMaxFiles(SavedFileKind::Fax); }},
      {"Saved Coverpage Attachments", "MaxSize", 2000,
       [] { return GetSavedMaxSize(SavedFileKind::Coverpage); }},
      {"Saved Template Attachments", "MaxSize", 2000,
       [] { return GetSavedMaxSize(SavedFileKind::Template); }},
      {"Saved Fax Attachments", "MaxSize", 2000, [] { return GetSavedMaxSize(SavedFileKind::Fax); }},
      {"Fax Attachments", "MaxSize", 5000, [] { return GetFaxAttachmentMaxSize(); }},
  };
  // The effective value, as the integer profile reader makes it, replaces what was there.
  const struct {
    std::optional<std::string> stored;     // nullopt: key missing
    std::optional<std::int32_t> expected;  // nullopt: the default
  } values[] = {
      {std::nullopt, std::nullopt}, {"", std::nullopt}, {"37", 37}, {" -4 files", -4}, {"none", 0},
  };
  for (const NumberSetting &setting : settings) {
    for (const auto &value : values) {
      const std::string label =
          std::string(setting.section) + "/" + setting.key + "=" + value.stored.value_or("(missing)");
      SetConfig(setting.section, setting.key, value.stored);
      const std::int32_t expected = value.expected.value_or(setting.defaultValue);
      EXPECT_EQ(setting.read(), expected) << label;
      EXPECT_EQ(ConfigValue(setting.section, setting.key), std::to_string(expected)) << label;
    }
  }
}

struct SwitchSetting {
  const char *section;
  std::function<bool()> read;
};

TEST_F(SettingsFiles, SwitchesDefaultOnAndAreWrittenBackAsOneOrZero) {
  Install(ProductDir());
  const SwitchSetting settings[] = {
      {"Saved Coverpage Attachments", [] { return GetSavedCheckFormat(SavedFileKind::Coverpage); }},
      {"Saved Template Attachments", [] { return GetSavedCheckFormat(SavedFileKind::Template); }},
      {"Saved Fax Attachments", [] { return GetSavedCheckFormat(SavedFileKind::Fax); }},
      {"Fax Attachments", [] { return GetFaxAttachmentCheckFormat(); }},
  };
  const struct {
    std::optional<std::string> stored;
    bool expected;
  } values[] = {
      {std::nullopt, true}, {"", true}, {"0", false}, {"1", true}, {"7", true}, {"-1", true}, {"yes", false},
  };
  for (const SwitchSetting &setting : settings) {
    for (const auto &value : values) {
      const std::string label = std::string(setting.section) + "=" + value.stored.value_or("(missing)");
      SetConfig(setting.section, "CheckFormat", value.stored);
      EXPECT_EQ(setting.read(), value.expected) << label;
      EXPECT_EQ(ConfigValue(setting.section, "CheckFormat"), value.expected ? "1" : "0") << label;
    }
  }
}

TEST_F(SettingsFiles, SettingsNotWrittenBackLeaveTheFileAlone) {
  Install(ProductDir());
  EXPECT_EQ(GetMailSystem(), "");
  EXPECT_EQ(GetGatewayInDirectory("C:\\IN"), "C:\\IN");
  EXPECT_EQ(GetGatewayOutDirectory("C:\\OUT"), "C:\\OUT");
  EXPECT_EQ(GetCoverDirectory(), "");
  EXPECT_EQ(GetVoicemailDirectory(), "");
  EXPECT_EQ(GetInternationalPrefix("00"), "00");
  EXPECT_EQ(GetCountryCode("49"), "49");
  EXPECT_EQ(GetAreaCode("89"), "89");
  EXPECT_EQ(GetJfaxDomain(), kDefaultJfaxDomain);
  EXPECT_EQ(GetJfaxDial(3, "none"), "none");
  EXPECT_FALSE(GetDebugScheduling());
  EXPECT_FALSE(Exists(ProductDir() + "/tqvconfg.ini"));
}

struct TextSetting {
  const char *section;
  const char *key;
  std::size_t limit;
  std::function<std::string()> read;
};

TEST_F(SettingsFiles, LongValuesAreCutToTheirLimit) {
  Install(ProductDir());
  const TextSetting settings[] = {
      {"Misc", "MailSystem", 254, [] { return GetMailSystem(); }},
      {"Misc", "Language", 46, [] { return GetLanguage(); }},
      {"Directories", "GatewayIn", 259, [] { return GetGatewayInDirectory(""); }},
      {"Directories", "GatewayOut", 259, [] { return GetGatewayOutDirectory(""); }},
      {"Directories", "CoverDir", 259, [] { return GetCoverDirectory(); }},
      {"Directories", "Voicemail", 259, [] { return GetVoicemailDirectory(); }},
      {"Phone Properties", "InternationalPrefix", 19, [] { return GetInternationalPrefix(""); }},
      {"Phone Properties", "CountryCode", 19, [] { return GetCountryCode(""); }},
      {"Phone Properties", "AreaCode", 19, [] { return GetAreaCode(""); }},
      {"JFAX Dial", "Domain", 255, [] { return GetJfaxDomain(); }},
      {"JFAX Dial", "Dial19", 94, [] { return GetJfaxDial(19, ""); }},
  };
  const std::string longValue(400, 'x');
  for (const TextSetting &setting : settings) {
    SetConfig(setting.section, setting.key, longValue);
    EXPECT_EQ(setting.read(), longValue.substr(0, setting.limit)) << setting.key;
  }

  platform::ProfileWriteString("Corvanta", "Directory", longValue, MachineFile());
  EXPECT_EQ(GetProductDirectory(), longValue.substr(0, 259));
}

TEST_F(SettingsFiles, LanguageIsWrittenBackAsRead) {
  Install(ProductDir());
  EXPECT_EQ(GetLanguage(), "");
  EXPECT_EQ(ConfigValue("Misc", "Language"), "");

  SetConfig("Misc", "Language", "German");
  EXPECT_EQ(GetLanguage(), "German");
  EXPECT_EQ(ConfigValue("Misc", "Language"), "German");
}

TEST_F(SettingsFiles, DialKeyIsTheMagnitudeOfTheIndex) {
  Install(ProductDir());
  SetConfig("JFAX Dial", "Dial0", "0044*");
  SetConfig("JFAX Dial", "Dial12", "001*");
  SetConfig("JFAX Dial", "Dial2147483648", "edge");
  const struct {
    std::int32_t index;
    const char *expected;
  } cases[] = {
      {0, "0044*"},
      {12, "001*"},
      {-12, "001*"},
      {13, "default"},
      {std::numeric_limits<std::int32_t>::min(), "edge"},
  };
  for (const auto &c : cases) {
    EXPECT_EQ(GetJfaxDial(c.index, "default"), c.expected) << c.index;
  }
}

TEST_F(SettingsFiles, IntranetCharactersTakeTheFirstAndWriteTheValueBack) {
  Install(ProductDir());
  const struct {
    const char *key;
    std::function<char()> read;
    char defaultCharacter;
  } settings[] = {
      {"SpacePlaceholder", [] { return GetSpacePlaceholder(); }, '_'},
      {"NameCompanyFaxSeparator", [] { return GetNameCompanyFaxSeparator(); }, '.'},
  };
  const struct {
    std::optional<std::string> stored;
    std::optional<char> expected;        // nullopt: the default
    std::optional<std::string> written;  // nullopt: the default as text
  } values[] = {
      {std::nullopt, std::nullopt, std::nullopt},
      {"-+", '-', "-+"},
      // Present but empty: no character at all, and it stays empty.
      {"", '\0', ""},
      {"#abcdefgh", '#', "#abcde"},
  };
  for (const auto &setting : settings) {
    for (const auto &value : values) {
      const std::string label = std::string(setting.key) + "=" + value.stored.value_or("(missing)");
      SetConfig("Intranet", setting.key, value.stored);
      const char expected = value.expected.value_or(setting.defaultCharacter);
      EXPECT_EQ(setting.read(), expected) << label;
      EXPECT_EQ(ConfigValue("Intranet", setting.key), value.written.value_or(std::string(1, expected)))
          << label;
    }
  }
}

}  // namespace
}  // namespace tqv
