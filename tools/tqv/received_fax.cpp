// Playing a received fax. The image goes where the library said, mapped to a native path the same
// way the library maps it, so both sides see the same file.
#include "tqv/received_fax.h"

#include <array>
#include <filesystem>
#include <system_error>

#if !defined(_WIN32)
#include "platform/posix/native_path.h"
#endif
#include "tqv/host_records.h"
#include "tqv/loopback_line.h"

namespace tqv::tool {

namespace {

namespace fs = std::filesystem;

// Windows opens the library's paths as they are; elsewhere they are mapped as the library maps them.
std::string NativePath(std::string_view windowsPath) {
#if defined(_WIN32)
  return std::string(windowsPath);
#else
  return platform::ToNativePath(windowsPath);
#endif
}

bool CopyInto(const std::string &source, const std::string &target, std::string &error) {
  std::error_code failed;
  if (fs::copy_file(source, target, fs::copy_options::none, failed)) return true;
  error = "cannot copy " + source + " to " + target + ": " + failed.message();
  // Only a copy that got as far as creating the target leaves anything to remove.
  if (failed != std::errc::file_exists) fs::remove(target, failed);
  return false;
}

}  // namespace

std::string OcrTextPathFor(std::string_view faxFile) {
  const std::size_t separator = faxFile.find_last_of("\\/");
  const std::size_t dot = faxFile.rfind('.');
  const bool hasExtension =
      dot != std::string_view::npos && (separator == std::string_view::npos || dot > separator);
  return std::string(hasExtension ? faxFile.substr(0, dot) : faxFile) + ".TXT";
}

bool PlayReceivedFax(const EntryPoints &entries, const ReceivedFax &fax, std::ostream &out,
                     std::string &error) {
  std::array<unsigned char, kReceiveRecordSize> buffer{};
  unsigned char *record = buffer.data();
  entries.createReceiveFaxFile(record);
  const std::string faxFile = ReadText(record, host_receive::FaxFile);
  if (faxFile.empty()) {
    error = "S_CreateReceiveFaxFile named no file";
    return false;
  }
  const std::string nativeFax = NativePath(faxFile);
  if (!CopyInto(fax.imageFile, nativeFax, error)) return false;
  out << "receive: image " << fax.imageFile << " stored as " << faxFile << " (" << nativeFax << ")"
      << std::endl;

  if (!fax.ocrTextFile.empty()) {
    const std::string ocrFile = OcrTextPathFor(faxFile);
    const std::string nativeOcr = NativePath(ocrFile);
    if (!CopyInto(fax.ocrTextFile, nativeOcr, error)) {
      std::error_code ignored;
      fs::remove(nativeFax, ignored);
      return false;
    }
    WriteNumber(record, host_receive::OcrAvailable, std::uint32_t{1});
    WriteText(record, host_receive::OcrTextFile, ocrFile);
    out << "receive: text " << fax.ocrTextFile << " stored as " << ocrFile << std::endl;
  }

  WriteText(record, host_receive::RemoteId, fax.csid);
  WriteText(record, host_receive::DtmfDigits, fax.dtmfDigits);
  WriteNumber(record, host_receive::Result, fax.result);
  if (fax.result != kResultReceived)
    WriteText(record, host_receive::Info, "Loopback line: simulated reception failure");
  WriteText(record, host_receive::Port, kLoopbackPort);
  WriteNumber(record, host_receive::SpeedCode, kSpeed14400);
  WriteNumber(record, host_receive::CallDuration, kSecondsPerPage);
  WriteNumber(record, host_receive::PagesReceived, std::uint32_t{1});

  const int handed = entries.faxReceived(record);
  std::error_code ignored;
  out << "received: from \"" << fax.csid << "\", DTMF \"" << fax.dtmfDigits << "\", result " << fax.result
      << "; S_FaxReceived = " << handed << "; the image "
      << (fs::exists(nativeFax, ignored) ? "is still there" : "was removed by the library") << std::endl;
  return true;
}

}  // namespace tqv::tool
