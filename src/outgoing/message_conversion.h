// Turns one gateway message into fax jobs: one job file per recipient in the pending directory,
// each with its own copies of the documents. A message that cannot be faxed is answered with a
// conversion error report, or dropped silently when it is damaged or overfull.
#pragma once

#include <string_view>

namespace tqv {

// Work files of the conversion, in the work directory. The body and setup files stay until the
// next conversion or the end of the scan call; the message-text file is removed at once.
inline constexpr std::string_view kBodyWorkFile = "tqvbody.tmp";
inline constexpr std::string_view kSetupWorkFile = "tqvsetup.tmp";
inline constexpr std::string_view kMessageTextWorkFile = "tqvmesg.tmp";

// Texts of the string file told to the sender.
inline constexpr int kStringSenderNotAllowed = 706;
inline constexpr int kStringDefaultFileMissing = 708;
inline constexpr int kStringNoSuchCover = 710;
inline constexpr int kStringNoSuchTemplate = 711;
inline constexpr int kStringNoDefaultTemplate = 712;
inline constexpr int kStringNothingToSend = 713;
inline constexpr int kStringCoverFileMissing = 714;
inline constexpr int kStringTemplateFileMissing = 715;

// Converts the gateway message file at `path`; the file itself is left for the caller to delete.
void ConvertMessage(std::string_view path);

}  // namespace tqv
