// Playing a received fax. The image goes where the library said, through the library's own file
// layer, so both sides see the same file; a source that is not a plain file is refused unread.
#include "tqv/host/received_fax.h"

#include <array>
#include <filesystem>
#include <system_error>

#if !defined(_WIN32)
#include "platform/posix/native_path.h"
#endif
#include "platform/file.h"
#include "platform/file_system.h"
#include "tqv/host/host_records.h"
#include "tqv/host/loopback_line.h"

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

// `target` is the library's Windows-form name; it must not exist yet.
bool CopyInto(std::string_view what, const std::string &source, bool followLinks, const std::string &target,
              std::string &error) {
  std::optional<platform::File> from =
      platform::File::Open(source, platform::FileAccess::Read, platform::FileSharing::ReadWrite,
                           platform::FileCreation::OpenExisting,
                           followLinks ? platform::FinalLink::Follow : platform::FinalLink::Refuse);
  if (!from) {
    bool held = false;
    error = std::string(what) + " " + source + " " + WhyNotOpened(source, followLinks, held);
    return false;
  }
  std::optional<platform::File> to = platform::File::Open(
      target, platform::FileAccess::Write, platform::FileSharing::None, platform::FileCreation::CreateNew);
  if (!to) {
    error = "cannot create " + target;
    return false;
  }
  std::array<char, 64 * 1024> piece{};
  while (true) {
    const std::optional<std::size_t> got = from->Read(piece.data(), piece.size());
    if (got && *got == 0) return true;
    if (!got || !to->Write(piece.data(), *got)) break;
  }
  error = "cannot copy " + source + " to " + target;
  to.reset();
  platform::RemoveFile(target);
  return false;
}

}  // namespace

std::string WhyNotOpened(const std::string &path, bool linksFollowed, bool &held) {
  held = false;
  const std::optional<platform::EntryInfo> entry = platform::GetEntryInfo(path);
  if (!entry) return "does not exist";
  std::error_code failed;
  const bool link = fs::is_symlink(fs::symlink_status(path, failed));
  if (link && !linksFollowed) return "is a link";
  if (link ? !fs::is_regular_file(fs::status(path, failed)) : !entry->isRegularFile)
    return "is not a plain file";
  held = true;
  return "is still held by its writer";
}

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
  if (!CopyInto("image", fax.imageFile, !fax.namedByRequest, faxFile, error)) return false;
  out << "receive: image " << fax.imageFile << " stored as " << faxFile << " (" << nativeFax << ")"
      << std::endl;

  if (!fax.ocrTextFile.empty()) {
    const std::string ocrFile = OcrTextPathFor(faxFile);
    if (!CopyInto("text", fax.ocrTextFile, !fax.namedByRequest, ocrFile, error)) {
      platform::RemoveFile(faxFile);
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
