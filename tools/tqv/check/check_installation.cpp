// The installation checks in start-up's order: Windows directory, machine file, product
// directory, settings, string file, directories, dial settings, then the administration database.
// A check whose ground is missing is not run, so one fault gives one finding.
#include "tqv/check/check_installation.h"

#include <set>
#include <string_view>

#include "common/path_helpers.h"
#include "config/settings_files.h"
#include "host/start_up.h"
#include "outgoing/dial_strings.h"
#include "platform/profile.h"
#include "platform/windows_directory.h"
#include "tqv/check/check_admin_database.h"
#include "tqv/check/check_file_system.h"
#include "tqv/check/check_string_file.h"
#include "tqv/shared/json_writer.h"

namespace tqv::tool {

namespace {

// Read as start-up reads it, but without writing the effective value back.
constexpr std::size_t kLanguageSize = 47;
// Characters people write in phone numbers besides the significant ones.
constexpr std::string_view kPhonePunctuation = " -./";

std::string Joined(std::string directory, std::string_view name) {
  AppendBackslash(directory);
  return directory + std::string(name);
}

std::string ParentOf(std::string_view path) {
  std::string_view trimmed = path;
  if (!trimmed.empty() && (trimmed.back() == '\\' || trimmed.back() == '/')) trimmed.remove_suffix(1);
  const std::size_t separator = trimmed.find_last_of("\\/");
  return separator == std::string_view::npos ? std::string() : std::string(trimmed.substr(0, separator));
}

class DirectoryChecks {
 public:
  explicit DirectoryChecks(CheckReport &report) : report_(report) {}

  // A directory the gateway owns: the library never creates it.
  bool Existing(std::string_view role, std::string_view path) {
    DirectoryStatus &status = Look(role, path, Severity::Error);
    if (!status.exists) report_.Error(std::string(role) + " " + Quoted(path) + " does not exist");
    return status.exists;
  }

  // A directory start-up creates when missing, one level only.
  void Created(std::string_view role, std::string_view path, Severity severity) {
    DirectoryStatus &status = Look(role, path, severity);
    if (status.exists) return;
    const std::string parent = ParentOf(path);
    std::string reason;
    if (FileExists(path)) {
      reason = " is a file, not a directory";
    } else if (created_.count(parent) == 0 && !DirectoryExists(parent)) {
      reason = " cannot be created: start-up makes one level only and " + Quoted(parent) + " does not exist";
    } else if (created_.count(parent) == 0 && !IsWritableDirectory(parent)) {
      reason = " cannot be created: " + Quoted(parent) + " is not writable";
    } else {
      created_.insert(std::string(path));
      status.createdAtStartUp = true;
      return;
    }
    report_.findings.push_back({severity, std::string(role) + " " + Quoted(path) + reason});
  }

  // Directories that other programs write into: their exclusive opens must hold.
  void Shared(std::string_view role) {
    for (const DirectoryStatus &status : report_.directories)
      if (status.role == role && IsNetworkFileSystem(status.fileSystem))
        report_.Warning(std::string(role) + " " + Quoted(status.path) + " is on " + status.fileSystem +
                        ": locks that keep half-written files from the library may not hold there");
  }

 private:
  DirectoryStatus &Look(std::string_view role, std::string_view path, Severity severity) {
    DirectoryStatus status{std::string(role), std::string(path)};
    status.exists = !path.empty() && DirectoryExists(path);
    if (status.exists) {
      status.writable = IsWritableDirectory(path);
      status.fileSystem = FileSystemName(path);
      if (!status.writable)
        report_.findings.push_back({severity, std::string(role) + " " + Quoted(path) + " is not writable"});
    }
    report_.directories.push_back(std::move(status));
    return report_.directories.back();
  }

  CheckReport &report_;
  std::set<std::string> created_;  // what start-up will have created before it gets to a child
};

// The gateway and product directories are checked before their children.
void CheckDirectories(const std::string &product, CheckReport &report) {
  DirectoryChecks directories(report);
  const std::string gatewayIn = GetGatewayInDirectory("");
  const std::string gatewayOut = GetGatewayOutDirectory("");
  bool gatewayInExists = false;
  bool gatewayOutExists = false;
  if (gatewayIn.empty())
    report.Error("[Directories] GatewayIn is not set: the library will not start");
  else
    gatewayInExists = directories.Existing("gateway-in directory", gatewayIn);
  if (gatewayOut.empty())
    report.Error("[Directories] GatewayOut is not set: the library will not start");
  else
    gatewayOutExists = directories.Existing("gateway-out directory", gatewayOut);

  if (gatewayOutExists)
    directories.Created("pending directory", Joined(gatewayOut, "PENDING"), Severity::Error);
  directories.Created("temp directory", Joined(product, "TEMP"), Severity::Error);
  directories.Created("work directory", WorkDirectory(product), Severity::Error);
  const std::string cover = GetCoverDirectory();
  if (cover.empty())
    report.Error("[Directories] CoverDir is not set: the library will not start");
  else
    directories.Created("cover directory", cover, Severity::Error);
  const std::string voicemail = GetVoicemailDirectory();
  if (voicemail.empty())
    report.Warning("[Directories] Voicemail is not set: voicemail cannot be used");
  else
    directories.Created("voicemail directory", voicemail, Severity::Warning);
  directories.Created("attachment directory", AttachmentDirectory(product), Severity::Error);
  if (gatewayInExists) {
    if (gatewayIn.find_first_of("\\/") == std::string::npos)
      report.Warning("gateway-in directory " + Quoted(gatewayIn) +
                     " has no separator: received faxes go to " + Quoted(gatewayIn + "TEMP"));
    else
      directories.Created("temp-in directory", host::TempInDirectory(gatewayIn), Severity::Error);
  }
  for (std::string_view shared : {"gateway-in directory", "gateway-out directory", "voicemail directory"})
    directories.Shared(shared);
}

void CheckPhoneProperties(CheckReport &report) {
  const std::string prefix = GetInternationalPrefix("");
  const std::pair<std::string_view, std::string> properties[] = {
      {"InternationalPrefix", prefix}, {"CountryCode", GetCountryCode("")}, {"AreaCode", GetAreaCode("")}};
  for (const auto &[key, value] : properties) {
    for (char c : value) {
      if (IsSignificant(c) || kPhonePunctuation.find(c) != std::string_view::npos) continue;
      std::string digits = value;
      report.Warning("[Phone Properties] " + std::string(key) + " " + Quoted(value) +
                     " holds more than a phone number: the library dials with " + Quoted(DigitsOnly(digits)));
      break;
    }
  }
  if (prefix.empty())
    report.Warning(
        "[Phone Properties] InternationalPrefix is not set: numbers written with '+' are dialled as written");
}

void CheckJfaxPatterns(CheckReport &report) {
  std::string endOfList;  // the key of the first pattern that ends the list
  bool anyPattern = false;
  for (int index = 0; index < kJfaxPatternCount; ++index) {
    const std::string key = "Dial" + std::to_string(index);
    const std::string pattern = GetJfaxDial(index, "");
    std::size_t position = 0;
    const bool significant = NextSignificant(pattern, position) != '\0';
    if (!significant) {
      if (endOfList.empty()) endOfList = key;
      if (!pattern.empty())
        report.Warning("[JFAX Dial] " + key + " " + Quoted(pattern) + " holds no digit: the list ends there");
      continue;
    }
    if (!endOfList.empty()) {
      report.Warning("[JFAX Dial] " + key + " is never used: " + endOfList + " ends the list before it");
      continue;
    }
    anyPattern = true;
    // The comparison runs over the pattern's full length, so a blank makes it match whole numbers only.
    for (char c : pattern) {
      if (IsSignificant(c)) continue;
      report.Warning(
          "[JFAX Dial] " + key + " " + Quoted(pattern) +
          " holds characters other than digits, '(', ')' and '+': it matches only that whole number, "
          "not the numbers beginning with it");
      break;
    }
  }
  const std::string domain = GetJfaxDomain();
  if (anyPattern && (domain.empty() || domain == kDefaultJfaxDomain))
    report.Error("[JFAX Dial] Domain is not set: JFAX jobs are mailed to '" + domain + "'");
}

// The machine file and the product directory; empty when either is missing.
std::string ProductDirectory(CheckReport &report) {
  const std::string windowsDirectory = platform::WindowsDirectory();
  if (!DirectoryExists(windowsDirectory)) {
    report.Error("Windows directory " + Quoted(windowsDirectory) +
                 " does not exist (TQVSPOOL_WINDIR on POSIX)");
    return {};
  }
  // Looked for before the settings are touched: working out their paths creates the folder.
  const std::string machineFile = Joined(Joined(windowsDirectory, "Corvanta"), "TQVMSERV.INI");
  if (!FileExists(machineFile)) {
    report.Error("machine file " + Quoted(machineFile) + " does not exist: the library will not start");
    return {};
  }
  const std::string product = GetProductDirectory();
  if (product.empty()) {
    report.Error("[Corvanta] Directory is not set in " + Quoted(MachineFilePath()) +
                 ": the library will not start");
    return {};
  }
  if (!DirectoryExists(product)) {
    report.Error("product directory " + Quoted(product) + " does not exist: the library will not start");
    return {};
  }
  return product;
}

}  // namespace

CheckReport CheckInstallation() {
  CheckReport report;
  const std::string product = ProductDirectory(report);
  if (product.empty()) return report;
  if (!FileExists(ConfigFilePath()))
    report.Warning("settings file " + Quoted(ConfigFilePath()) +
                   " does not exist: every setting takes its default");

  const std::string language =
      platform::ProfileReadString("Misc", "Language", "", kLanguageSize, ConfigFilePath());
  CheckStringFile(GetMailSystem(), StringFilePath(product), language, report);
  CheckDirectories(product, report);
  CheckPhoneProperties(report);
  CheckJfaxPatterns(report);
  CheckAdminDatabase(product, report);
  return report;
}

bool CheckReport::HasError() const {
  for (const Finding &finding : findings)
    if (finding.severity == Severity::Error) return true;
  return false;
}

std::string_view SeverityName(Severity severity) {
  return severity == Severity::Error ? "error" : "warning";
}

std::string RenderCheckText(const CheckReport &report, bool withDirectories) {
  std::string text;
  if (withDirectories) {
    for (const DirectoryStatus &status : report.directories) {
      text += status.role + " " + status.path + ": ";
      if (!status.exists)
        text += status.createdAtStartUp ? "missing, start-up creates it" : "missing";
      else
        text += (status.fileSystem.empty() ? std::string("unknown file system") : status.fileSystem) +
                (status.writable ? ", writable" : ", not writable");
      text += "\n";
    }
  }
  for (const Finding &finding : report.findings)
    text += std::string(SeverityName(finding.severity)) + ": " + finding.text + "\n";
  return text;
}

std::string RenderCheckJson(const CheckReport &report) {
  JsonWriter json;
  json.BeginArray();
  for (const Finding &finding : report.findings) {
    json.BeginObject();
    json.Key("severity");
    json.String(SeverityName(finding.severity));
    json.Key("text");
    json.String(finding.text);
    json.EndObject();
  }
  json.EndArray();
  return json.Text() + "\n";
}

}  // namespace tqv::tool
