// The administration listing: headings from the string file, one padded line per saved file
// with its size, or text 1000 for a file that is missing.
#include "reports/admin_listing.h"

#include <cinttypes>
#include <cstdio>
#include <optional>

#include "common/path_helpers.h"
#include "common/text_limits.h"
#include "config/message_strings.h"
#include "config/numbered_list.h"
#include "config/saved_file_defaults.h"
#include "config/saved_files.h"
#include "config/user_details.h"
#include "config/user_properties.h"
#include "reports/report_layout.h"

namespace tqv {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr const char *kIndent = "    ";
constexpr const char *kEntryFormat = "%s%-30.30s  ";
constexpr const char *kResolutionFormat = "%s%-15.15s  ";
constexpr const char *kFaxHeaderFormat = "%s%-50.50s  ";
constexpr const char *kSizeFormat = "%" PRId64 " bytes";

constexpr int kSavedCoversHeading = 670;
constexpr int kDefaultCoverHeading = 671;
constexpr int kSavedTemplatesHeading = 672;
constexpr int kDefaultTemplateHeading = 673;
constexpr int kSavedAttachmentsHeading = 674;
constexpr int kResolutionHeading = 675;
constexpr int kFaxHeaderHeading = 676;
constexpr int kMissingFileText = 1000;
constexpr int kStandardResolution = 647;
constexpr int kFineResolution = 648;

// Lookup rooms of the texts that are not headings.
constexpr std::size_t kMissingFileRoom = 100;
constexpr std::size_t kResolutionRoom = 23;
constexpr std::size_t kFaxHeaderRoom = 511;
// Buffers the saved-file entries are read into.
constexpr std::size_t kEntryNameSize = kMaxName + 1;
constexpr std::size_t kEntryPathSize = kMaxPath + 1;

std::string Padded(const char *format, const std::string &value) {
  char line[64];
  std::snprintf(line, sizeof line, format, kIndent, value.c_str());
  return line;
}

void AppendEntry(std::string &text, const SavedFile &file) {
  text += Padded(kEntryFormat, file.name);
  const std::int64_t size = GetFileSizeOf(file.path);
  if (size < 0) {
    text += LookupString(kMissingFileText, kMissingFileRoom);
  } else {
    char sizeText[32];
    std::snprintf(sizeText, sizeof sizeText, kSizeFormat, size);
    text += sizeText;
  }
  text += kLineEnd;
}

void AppendSavedFiles(std::string &text, SavedFileKind kind, std::string_view user) {
  SavedFile file;
  for (int result = FirstSavedFile(kind, user, kEntryNameSize, kEntryPathSize, file);
       result == kListEntry && text.size() < kAdminListingFullMark;
       result = NextSavedFile(kEntryNameSize, kEntryPathSize, file))
    AppendEntry(text, file);
}

void AppendHeading(std::string &text, int number) {
  text += GetString(number);
  text += kLineEnd;
}

}  // namespace

std::string FormatAdminListing(std::string_view user, std::string_view errorText) {
  std::string text;
  if (!errorText.empty()) {
    text += kErrorLineMark;
    text += errorText;
    text += kLineEnd;
    text += kLineEnd;
  }

  SavedFile defaultFile;
  AppendHeading(text, kSavedCoversHeading);
  AppendSavedFiles(text, SavedFileKind::Coverpage, user);
  text += kLineEnd;
  AppendHeading(text, kDefaultCoverHeading);
  if (GetDefaultCover(user, kEntryNameSize, kEntryPathSize, defaultFile)) AppendEntry(text, defaultFile);

  text += kLineEnd;
  text += kLineEnd;
  AppendHeading(text, kSavedTemplatesHeading);
  AppendSavedFiles(text, SavedFileKind::Template, user);
  text += kLineEnd;
  AppendHeading(text, kDefaultTemplateHeading);
  if (GetDefaultTemplate(user, kEntryNameSize, kEntryPathSize, defaultFile)) AppendEntry(text, defaultFile);

  text += kLineEnd;
  text += kLineEnd;
  AppendHeading(text, kSavedAttachmentsHeading);
  AppendSavedFiles(text, SavedFileKind::Fax, user);

  text += kLineEnd;
  text += kLineEnd;
  AppendHeading(text, kResolutionHeading);
  const bool fine = HasProperty(GetUserProperties(user), UserProperty::HighResolution);
  text +=
      Padded(kResolutionFormat, LookupString(fine ? kFineResolution : kStandardResolution, kResolutionRoom));
  text += kLineEnd;
  text += kLineEnd;

  AppendHeading(text, kFaxHeaderHeading);
  if (const std::optional<std::string> header = GetUserFaxHeader(user, kFaxHeaderRoom)) {
    text += Padded(kFaxHeaderFormat, *header);
    text += kLineEnd;
  }
  text += kLineEnd;
  return CutText(text, CharsInBuffer(kAdminListingSize));
}

}  // namespace tqv
