// The settings accessors: each reads its key from TQVMSERV.INI or tqvconfg.ini when asked. Nothing
// fails here: a missing file or key gives the default, and a failed write-back goes unnoticed.
#include "config/settings_files.h"

#include <cstddef>

#include "common/path_helpers.h"
#include "common/profile_helpers.h"
#include "common/text_limits.h"
#include "platform/profile.h"
#include "platform/windows_directory.h"

namespace tqv {

namespace {

// GetWindowsDirectory is given a buffer of this many bytes.
constexpr std::size_t kWindowsDirectoryBuffer = 245;

// Characters kept of each text value.
constexpr std::size_t kDirectoryLimit = kMaxPath;
constexpr std::size_t kMailSystemLimit = kMaxName;
constexpr std::size_t kLanguageLimit = 46;
constexpr std::size_t kPhoneLimit = 19;
constexpr std::size_t kJfaxDomainLimit = 255;
constexpr std::size_t kJfaxDialLimit = 94;
// Only the first character is used, but the value is read and written back up to this length.
constexpr std::size_t kIntranetLimit = 6;

constexpr std::int32_t kDefaultMaxFiles = 10;
constexpr std::int32_t kDefaultSavedMaxSize = 2000;
constexpr std::int32_t kDefaultFaxAttachmentMaxSize = 5000;

// The settings paths of the process: worked out on first use and kept, so a later change of
// the product directory takes effect only in a new process.
struct SettingsPaths {
  bool workedOut = false;
  std::string machineFile;
  std::string configFile;
};

SettingsPaths &Paths() {
  static SettingsPaths paths;
  return paths;
}

// The directory joined with one name, cut to a path buffer.
std::string Joined(std::string_view directory, std::string_view name) {
  std::string path(directory);
  CutText(path, kMaxPath);
  AppendBackslash(path);
  path += name;
  return CutText(path, kMaxPath);
}

std::string ReadText(std::string_view section, std::string_view key, std::string_view defaultValue,
                     std::size_t limit, std::string_view file) {
  return platform::ProfileReadString(section, key, defaultValue, limit + 1, file);
}

std::string ReadMachineDirectory(std::string_view machineFile) {
  return ReadText("Corvanta", "Directory", "", kDirectoryLimit, machineFile);
}

const SettingsPaths &WorkedOutPaths() {
  SettingsPaths &paths = Paths();
  if (paths.workedOut) return paths;

  std::string corvanta = platform::WindowsDirectory();
  CutText(corvanta, CharsInBuffer(kWindowsDirectoryBuffer));
  AppendBackslash(corvanta);
  corvanta += "Corvanta";
  CutText(corvanta, kMaxPath);
  // The machine file may be the first thing on a fresh machine: its folder is made here.
  if (!DirectoryExists(corvanta)) CreateOneDirectory(corvanta);
  paths.machineFile = Joined(corvanta, "TQVMSERV.INI");
  paths.configFile = Joined(ReadMachineDirectory(paths.machineFile), "tqvconfg.ini");
  paths.workedOut = true;
  return paths;
}

std::string ReadConfigText(std::string_view section, std::string_view key, std::string_view defaultValue,
                           std::size_t limit) {
  return ReadText(section, key, defaultValue, limit, ConfigFilePath());
}

// Reads a number and writes its effective value back, so the key exists from then on.
std::int32_t ReadNumberWrittenBack(std::string_view section, std::string_view key,
                                   std::int32_t defaultValue) {
  const std::string &file = ConfigFilePath();
  const std::int32_t value = platform::ProfileReadInt(section, key, defaultValue, file);
  WriteProfileInt(section, key, value, file);
  return value;
}

bool ReadSwitchWrittenBack(std::string_view section, std::string_view key, bool defaultValue) {
  const std::string &file = ConfigFilePath();
  const bool on = platform::ProfileReadInt(section, key, defaultValue ? 1 : 0, file) != 0;
  platform::ProfileWriteString(section, key, on ? std::string_view("1") : std::string_view("0"), file);
  return on;
}

std::string ReadTextWrittenBack(std::string_view section, std::string_view key, std::string_view defaultValue,
                                std::size_t limit) {
  const std::string &file = ConfigFilePath();
  std::string value = ReadText(section, key, defaultValue, limit, file);
  platform::ProfileWriteString(section, key, std::string_view(value), file);
  return value;
}

// An empty value yields NUL, so that callers can tell "no character" from a real one.
char ReadIntranetCharacter(std::string_view key, std::string_view defaultValue) {
  const std::string value = ReadTextWrittenBack("Intranet", key, defaultValue, kIntranetLimit);
  return value.empty() ? '\0' : value.front();
}

std::string_view SavedSection(SavedFileKind kind) {
  switch (kind) {
    case SavedFileKind::Coverpage:
      return "Saved Coverpage Attachments";
    case SavedFileKind::Template:
      return "Saved Template Attachments";
    case SavedFileKind::Fax:
      break;
  }
  return "Saved Fax Attachments";
}

}  // namespace

const std::string &MachineFilePath() {
  return WorkedOutPaths().machineFile;
}

const std::string &ConfigFilePath() {
  return WorkedOutPaths().configFile;
}

void ResetSettingsPathsForTesting() {
  Paths() = SettingsPaths{};
}

std::string GetProductDirectory() {
  return ReadMachineDirectory(MachineFilePath());
}

std::string GetMailSystem() {
  return ReadConfigText("Misc", "MailSystem", "", kMailSystemLimit);
}

std::string GetLanguage() {
  return ReadTextWrittenBack("Misc", "Language", "", kLanguageLimit);
}

std::string GetGatewayInDirectory(std::string_view defaultValue) {
  return ReadConfigText("Directories", "GatewayIn", defaultValue, kDirectoryLimit);
}

std::string GetGatewayOutDirectory(std::string_view defaultValue) {
  return ReadConfigText("Directories", "GatewayOut", defaultValue, kDirectoryLimit);
}

std::string GetCoverDirectory() {
  return ReadConfigText("Directories", "CoverDir", "", kDirectoryLimit);
}

std::string GetVoicemailDirectory() {
  return ReadConfigText("Directories", "Voicemail", "", kDirectoryLimit);
}

std::int32_t GetSavedMaxFiles(SavedFileKind kind) {
  return ReadNumberWrittenBack(SavedSection(kind), "MaxFiles", kDefaultMaxFiles);
}

std::int32_t GetSavedMaxSize(SavedFileKind kind) {
  return ReadNumberWrittenBack(SavedSection(kind), "MaxSize", kDefaultSavedMaxSize);
}

bool GetSavedCheckFormat(SavedFileKind kind) {
  return ReadSwitchWrittenBack(SavedSection(kind), "CheckFormat", true);
}

std::int32_t GetFaxAttachmentMaxSize() {
  return ReadNumberWrittenBack("Fax Attachments", "MaxSize", kDefaultFaxAttachmentMaxSize);
}

bool GetFaxAttachmentCheckFormat() {
  return ReadSwitchWrittenBack("Fax Attachments", "CheckFormat", true);
}

std::uint64_t GetMaxQueuedPerMessage() {
  // Read only: the key stays out of the file unless an administrator puts it there.
  const std::int32_t value = platform::ProfileReadInt("Fax Attachments", "MaxQueuedPerMessage",
                                                      kDefaultMaxQueuedPerMessage, ConfigFilePath());
  return static_cast<std::uint64_t>(value < 0 ? kDefaultMaxQueuedPerMessage : value);
}

bool GetDebugScheduling() {
  return platform::ProfileReadInt("Debug", "Scheduling", 0, ConfigFilePath()) != 0;
}

std::string GetInternationalPrefix(std::string_view defaultValue) {
  return ReadConfigText("Phone Properties", "InternationalPrefix", defaultValue, kPhoneLimit);
}

std::string GetCountryCode(std::string_view defaultValue) {
  return ReadConfigText("Phone Properties", "CountryCode", defaultValue, kPhoneLimit);
}

std::string GetAreaCode(std::string_view defaultValue) {
  return ReadConfigText("Phone Properties", "AreaCode", defaultValue, kPhoneLimit);
}

std::string GetJfaxDomain() {
  return ReadConfigText("JFAX Dial", "Domain", kDefaultJfaxDomain, kJfaxDomainLimit);
}

std::string GetJfaxDial(std::int32_t index, std::string_view defaultValue) {
  // Negated in unsigned arithmetic, so the most negative index has a magnitude too.
  const std::uint32_t magnitude =
      index < 0 ? 0u - static_cast<std::uint32_t>(index) : static_cast<std::uint32_t>(index);
  const std::string key = "Dial" + std::to_string(magnitude);
  return ReadConfigText("JFAX Dial", key, defaultValue, kJfaxDialLimit);
}

char GetSpacePlaceholder() {
  return ReadIntranetCharacter("SpacePlaceholder", "_");
}

char GetNameCompanyFaxSeparator() {
  return ReadIntranetCharacter("NameCompanyFaxSeparator", ".");
}

std::string StringFilePath(std::string_view productDirectory) {
  return Joined(productDirectory, "tqstring.ini");
}

std::string AttachmentDirectory(std::string_view productDirectory) {
  return Joined(productDirectory, "ATTACH");
}

std::string WorkDirectory(std::string_view productDirectory) {
  return Joined(productDirectory, "TEMP\\TQVSPOOL");
}

std::string AdminDatabasePath(std::string_view productDirectory) {
  return Joined(productDirectory, "tqvadmin.ini");
}

}  // namespace tqv
