// Result and error files of text-file jobs. They are written as bytes: the report already has its
// CR LF line ends, and the text file is copied unchanged.
#include "reports/text_job_files.h"

#include <array>
#include <optional>
#include <string>

#include "common/text_limits.h"
#include "common/unique_name.h"
#include "platform/file.h"
#include "platform/file_system.h"
#include "reports/report_layout.h"

namespace tqv {

namespace {

constexpr std::string_view kSuccessExtension = "OK";
constexpr std::string_view kFailureExtension = "ERR";
constexpr std::string_view kErrorSeparator = "\r\n\r\n\r\n";

void AppendFileContents(platform::File &target, std::string_view sourcePath) {
  std::optional<platform::File> source = platform::File::OpenShared(sourcePath);
  if (!source) return;
  std::array<char, kTextCopyBlock> block;
  for (std::optional<std::size_t> got; (got = source->Read(block.data(), block.size())) && *got > 0;)
    target.Write(block.data(), *got);
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
    result->Write(FormatSentReport(job));
    AppendFileContents(*result, workingCopy);
  }
  platform::RemoveFile(workingCopy);
}

void WriteTextJobErrorFile(std::string_view messageText, std::string_view textFilePath) {
  std::string textFile(textFilePath);
  CutText(textFile, kMaxPath);
  if (textFile.empty()) return;
  std::optional<platform::File> errorFile =
      platform::File::CreateExclusive(TextJobBaseName(textFile) + "." + std::string(kFailureExtension));
  if (!errorFile) return;
  errorFile->Write(messageText);
  errorFile->Write(kErrorSeparator);
  AppendFileContents(*errorFile, textFile);
  errorFile.reset();
  platform::RemoveFile(textFile);
}

}  // namespace tqv
