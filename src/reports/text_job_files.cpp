// Result and error files of text-file jobs. They are written as bytes: the report already has its
// CR LF line ends, and the text file is copied unchanged. A file that could not be written whole
// is removed, so no reader takes a part for the whole.
#include "reports/text_job_files.h"

#include <array>
#include <optional>
#include <string>

#include "common/text_limits.h"
#include "common/unique_name.h"
#include "diag/log_message.h"
#include "platform/event_log.h"
#include "platform/file.h"
#include "platform/file_system.h"
#include "reports/report_layout.h"

namespace tqv {

namespace {

constexpr std::string_view kSuccessExtension = "OK";
constexpr std::string_view kFailureExtension = "ERR";
constexpr std::string_view kErrorSeparator = "\r\n\r\n\r\n";

// False when a read or a write failed on the way; a source that cannot be opened adds nothing.
bool AppendFileContents(platform::File &target, std::string_view sourcePath) {
  std::optional<platform::File> source = platform::File::OpenShared(sourcePath);
  if (!source) return true;
  std::array<char, kTextCopyBlock> block;
  while (true) {
    const std::optional<std::size_t> got = source->Read(block.data(), block.size());
    if (!got) return false;
    if (*got == 0) return true;
    if (!target.Write(block.data(), *got)) return false;
  }
}

}  // namespace

std::string TextJobBaseName(std::string_view path) {
  std::string base(path);
  CutText(base, kMaxPath);
  const std::size_t dot = base.rfind('.');
  const std::size_t separator = base.find_last_of("\\/");
  if (dot != std::string::npos && (separator == std::string::npos || dot > separator)) base.resize(dot);
  return base;
}

std::string TextJobWorkingCopy(std::string_view path) {
  return TextJobBaseName(path) + std::string(kWorkingCopyExtension);
}

void WriteTextJobResult(const JobRecordView &job) {
  // For text-file jobs CustomString names the source file.
  const std::string source = job.Text(job::CustomString);
  if (source.empty()) return;
  const std::string base = TextJobBaseName(source);
  const std::string workingCopy = base + std::string(kWorkingCopyExtension);
  const bool delivered = job.Number(job::Status) == kStatusDelivered;
  const std::string resultPath =
      MakeUniqueVariant(base + "." + std::string(delivered ? kSuccessExtension : kFailureExtension));

  if (std::optional<platform::File> result = platform::File::CreateExclusive(resultPath)) {
    const bool whole = result->Write(FormatSentReport(job)) && AppendFileContents(*result, workingCopy);
    result.reset();
    // Half a result would be read as the whole of it; it goes as a result never created would.
    if (!whole) {
      platform::RemoveFile(resultPath);
      LogMessage(nullptr, kServiceEventSource, platform::kEventError,
                 "Result file '%s' of a text-file job to '%s' could not be written", resultPath.c_str(),
                 job.Text(job::FaxNumber).c_str());
    }
  }
  platform::RemoveFile(workingCopy);
}

void WriteTextJobErrorFile(std::string_view messageText, std::string_view textFilePath) {
  std::string textFile(textFilePath);
  CutText(textFile, kMaxPath);
  if (textFile.empty()) return;
  const std::string errorPath = TextJobBaseName(textFile) + "." + std::string(kFailureExtension);
  std::optional<platform::File> errorFile = platform::File::CreateExclusive(errorPath);
  if (!errorFile) return;
  const bool whole = errorFile->Write(messageText) && errorFile->Write(kErrorSeparator) &&
                     AppendFileContents(*errorFile, textFile);
  errorFile.reset();
  // An error file written only in part goes, and the text file stays, as when it cannot be created.
  platform::RemoveFile(whole ? textFile : errorPath);
}

}  // namespace tqv
