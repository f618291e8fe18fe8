// S_Initialise: settings, string file, directories and dial settings, in a fixed order. The first
// failed step ends start-up with one error event; what the steps before it set stays set.
#include "host/start_up.h"

#include <cstdarg>

#include "common/path_helpers.h"
#include "common/text_limits.h"
#include "config/admin_database.h"
#include "config/message_strings.h"
#include "config/service_state.h"
#include "config/settings_files.h"
#include "diag/check_assertion.h"
#include "diag/log_message.h"
#include "host/entry_points.h"
#include "outgoing/dial_strings.h"
#include "platform/event_log.h"

namespace tqv::host {

namespace {

constexpr int kFailed = -1;

void LogError(const char *format, ...) __attribute__((format(printf, 1, 2)));
void LogError(const char *format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  LogMessageV(nullptr, kServiceEventSource, platform::kEventError, format, arguments);
  va_end(arguments);
}

// A missing directory is created once, one level; only a second failed check counts.
bool EnsureDirectory(const std::string &path) {
  if (DirectoryExists(path)) return true;
  CreateOneDirectory(path);
  return DirectoryExists(path);
}

std::string Joined(std::string directory, std::string_view name) {
  AppendBackslash(directory);
  directory += name;
  return CutText(directory, kMaxPath);
}

}  // namespace

std::string TempInDirectory(std::string_view gatewayInDirectory) {
  std::string path(gatewayInDirectory);
  const std::size_t lastSeparator = path.find_last_of("\\/");
  CheckAssertion(lastSeparator != std::string::npos, "TQVSPOOL", 286);
  if (lastSeparator != std::string::npos) path.resize(lastSeparator + 1);
  path += "TEMP";
  return CutText(path, kMaxPath);
}

int Initialise(std::int32_t textFileFlag, const char *textFileDir) {
  ServiceState &service = CurrentService();
  MachineFilePath();
  ConfigFilePath();

  const std::int32_t attachmentLimit = GetSavedMaxFiles(SavedFileKind::Fax);
  const std::int32_t templateLimit = GetSavedMaxFiles(SavedFileKind::Template);
  const std::int32_t coverLimit = GetSavedMaxFiles(SavedFileKind::Coverpage);
  InitAdminDatabase(coverLimit, templateLimit, attachmentLimit);

  service.productDirectory = GetProductDirectory();
  if (service.productDirectory.empty()) {
    LogError("Please start administrator before runnig Corvanta");
    return kFailed;
  }

  service.textFileFlag = textFileFlag;
  service.textFileDirectory = textFileDir ? textFileDir : "";
  CutText(service.textFileDirectory, kMaxPath);

  const std::string stringFile = StringFilePath(service.productDirectory);
  if (InitStringsByCode(GetMailSystem(), stringFile, GetLanguage()) != 0) {
    LogError("File '%s' does not exist. The service cannot be launched", stringFile.c_str());
    return kFailed;
  }

  const std::string logDirectory = GetProductDirectory();
  if (logDirectory.empty()) {
    LogError("Log-directory cannot be retrieved");
    return kFailed;
  }
  if (!DirectoryExists(logDirectory)) {
    LogError("Log-directory '%s' does not exist", logDirectory.c_str());
    return kFailed;
  }

  service.gatewayInDirectory = GetGatewayInDirectory("");
  if (service.gatewayInDirectory.empty()) {
    LogError("Gateway-in-directory cannot be retrieved");
    return kFailed;
  }
  service.gatewayOutDirectory = GetGatewayOutDirectory("");
  if (service.gatewayOutDirectory.empty()) {
    LogError("Gateway-out-directory cannot be retrieved");
    return kFailed;
  }
  // The gateway owns its directories; the library never creates them.
  if (!DirectoryExists(service.gatewayInDirectory) || !DirectoryExists(service.gatewayOutDirectory)) {
    LogError("In-Directory '%s' or Out-Directory '%s' does not exist", service.gatewayInDirectory.c_str(),
             service.gatewayOutDirectory.c_str());
    return kFailed;
  }

  service.pendingDirectory = Joined(service.gatewayOutDirectory, "PENDING");
  if (!EnsureDirectory(service.pendingDirectory)) {
    LogError("Pending-Directory '%s' could not be created", service.pendingDirectory.c_str());
    return kFailed;
  }
  const std::string tempDirectory = Joined(service.productDirectory, "TEMP");
  if (!EnsureDirectory(tempDirectory)) {
    LogError("Temp-Directory '%s' could not be created", tempDirectory.c_str());
    return kFailed;
  }
  service.workDirectory = WorkDirectory(service.productDirectory);
  if (!EnsureDirectory(service.workDirectory)) {
    LogError("Temp-Directory '%s' could not be created", service.workDirectory.c_str());
    return kFailed;
  }
  service.coverDirectory = GetCoverDirectory();
  if (!EnsureDirectory(service.coverDirectory)) {
    LogError("Cover-Directory '%s' could not be created", service.coverDirectory.c_str());
    return kFailed;
  }
  service.voicemailDirectory = GetVoicemailDirectory();
  if (!EnsureDirectory(service.voicemailDirectory)) {
    LogMessage(nullptr, kServiceEventSource, platform::kEventWarning,
               "Voicemail directory '%s' doers not exist. Voicemail cannot be used",
               service.voicemailDirectory.c_str());
  }
  service.attachmentDirectory = AttachmentDirectory(service.productDirectory);
  if (!EnsureDirectory(service.attachmentDirectory)) {
    LogError("Attachment-Directory '%s' could not be created", service.attachmentDirectory.c_str());
    return kFailed;
  }
  service.tempInDirectory = TempInDirectory(service.gatewayInDirectory);
  if (!EnsureDirectory(service.tempInDirectory)) {
    LogError("Temp-In-Directory '%s' could not be created", service.tempInDirectory.c_str());
    return kFailed;
  }

  // The dial rules compare digits only, so "+49" or "(089)" in the settings read as 49 and 089.
  service.internationalPrefix = GetInternationalPrefix("");
  DigitsOnly(service.internationalPrefix);
  service.countryCode = GetCountryCode("");
  DigitsOnly(service.countryCode);
  service.areaCode = GetAreaCode("");
  DigitsOnly(service.areaCode);
  return 0;
}

}  // namespace tqv::host
