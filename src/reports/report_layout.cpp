// Report bodies: a title block, field lines with 20-column labels, and the closing banner. Text
// 631 is a format taken from the string file, so it is filled in by a formatter that only ever
// consumes the two numbers it is given and shows every other conversion as written.
#include "reports/report_layout.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <initializer_list>

#include "common/text_limits.h"
#include "config/message_strings.h"
#include "config/regional_formats.h"
#include "platform/clock.h"

namespace tqv {

namespace {

constexpr std::string_view kBanner = "*********************************************************";
static_assert(kBanner.size() == 57);
constexpr std::string_view kLineEnd = "\r\n";
// The label cut or padded to 20 columns, so values start in column 23.
constexpr const char *kFieldLabelFormat = "%-20.20s: ";
// Where a value is not shown.
constexpr std::string_view kPlaceholder = " ";
// Labels are looked up with this room; titles are whole texts of the string file.
constexpr std::size_t kLabelRoom = 255;
constexpr const char *kDurationFormat = "%02d:%02d";
constexpr const char *kVoicemailSizeFormat = "%ld bytes";

constexpr int kReportTitle = 620;
constexpr int kStatusLabel = 621;
constexpr int kResultLabel = 622;
constexpr int kSpeedLabel = 623;
constexpr int kRetriesLabel = 624;
constexpr int kSentDurationLabel = 625;
constexpr int kPagesSentLabel = 626;
constexpr int kResolutionLabel = 627;
constexpr int kReceivedDurationLabel = 628;
constexpr int kPagesReceivedLabel = 629;
constexpr int kRemoteIdLabel = 630;
constexpr int kPagesFormat = 631;
constexpr int kDateTimeLabel = 632;
constexpr int kFaxNumberLabel = 633;
constexpr int kFirstStatusText = 640;
constexpr std::uint32_t kLastStatusCode = 6;
constexpr int kStandardResolution = 647;
constexpr int kFineResolution = 648;
constexpr int kVoicemailTitle = 650;
constexpr int kMessageNumberLabel = 651;
constexpr int kVoicemailDurationLabel = 652;
constexpr int kSizeLabel = 653;
constexpr int kBoxLabel = 654;
constexpr int kDigitsLabel = 655;

constexpr std::array<std::string_view, 6> kSpeedTexts = {"2400 bps", "4800 bps",  "7200 bps",
                                                         "9600 bps", "12000 bps", "14400 bps"};

void AppendTitle(std::string &text, int titleNumber) {
  text += kBanner;
  text += kLineEnd;
  text += GetString(titleNumber);
  text += kLineEnd;
  text += kBanner;
  text += kLineEnd;
}

void AppendField(std::string &text, int labelNumber, std::string_view value) {
  const std::string label = LookupString(labelNumber, kLabelRoom);
  char prefix[32];
  std::snprintf(prefix, sizeof prefix, kFieldLabelFormat, label.c_str());
  text += prefix;
  text += value;
  text += kLineEnd;
}

std::string Closed(std::string text) {
  text += kBanner;
  text += kLineEnd;
  text += kLineEnd;
  return CutText(text, kReportBodyRoom);
}

// The regional date, two spaces and the regional time of the moment the report is made.
std::string CurrentDateAndTime() {
  const std::tm now = platform::LocalTime(platform::CurrentTime());
  std::array<char, kRegionalTextSize> date{}, time{};
  FormatRegionalDate(now, date.data(), date.size());
  FormatRegionalTime(now, time.data(), time.size());
  return std::string(date.data()) + "  " + time.data();
}

// True for flags, width and precision that printf can honour in a small buffer: widths and
// precisions of at most two digits.
bool IsModestDirective(std::string_view directive) {
  std::size_t digitRun = 0;
  for (char c : directive) {
    digitRun = (c >= '0' && c <= '9') ? digitRun + 1 : 0;
    if (digitRun > 2) return false;
  }
  return true;
}

// Fills the integer conversions of a localised format with `numbers` in order, as printf would.
// "%%" gives "%"; any other conversion, or one beyond the numbers given, stays as written.
std::string FormatNumbers(std::string_view format, std::initializer_list<std::int32_t> numbers) {
  auto next = numbers.begin();
  std::string result;
  for (std::size_t pos = 0; pos < format.size();) {
    if (format[pos] != '%') {
      result += format[pos++];
      continue;
    }
    if (pos + 1 < format.size() && format[pos + 1] == '%') {
      result += '%';
      pos += 2;
      continue;
    }
    const std::size_t directiveEnd =
        std::min(format.find_first_not_of("-+ #0123456789.", pos + 1), format.size());
    const std::size_t end = std::min(format.find_first_not_of("hlLqjzt", directiveEnd), format.size());
    const std::string_view directive = format.substr(pos + 1, directiveEnd - pos - 1);
    const char conversion = end < format.size() ? format[end] : '\0';
    if (conversion == '\0' || std::string_view("diuxX").find(conversion) == std::string_view::npos ||
        next == numbers.end() || !IsModestDirective(directive)) {
      result += '%';
      ++pos;
      continue;
    }
    const std::string single = "%" + std::string(directive) + conversion;
    char piece[128];
    if (conversion == 'd' || conversion == 'i')
      std::snprintf(piece, sizeof piece, single.c_str(), static_cast<int>(*next));
    else
      std::snprintf(piece, sizeof piece, single.c_str(),
                    static_cast<unsigned>(static_cast<std::uint32_t>(*next)));
    result += piece;
    ++next;
    pos = end + 1;
  }
  return result;
}

}  // namespace

std::string StatusText(std::uint32_t code) {
  if (code > kLastStatusCode) return std::string(kUnknownCodeText);
  return GetString(kFirstStatusText + static_cast<int>(code));
}

std::string SpeedText(std::int32_t code) {
  if (code < 0 || static_cast<std::size_t>(code) >= kSpeedTexts.size()) return std::string(kUnknownCodeText);
  return std::string(kSpeedTexts[static_cast<std::size_t>(code)]);
}

std::string DurationText(std::int32_t seconds) {
  char text[32];
  std::snprintf(text, sizeof text, kDurationFormat, seconds / 60, seconds % 60);
  return text;
}

std::string ResolutionText(std::uint32_t fineResolution) {
  return GetString(fineResolution == 0 ? kStandardResolution : kFineResolution);
}

std::string FormatSentReport(const JobRecordView &job) {
  // Speed, duration and resolution mean something only when a connection was made.
  const std::int32_t speed = job.Number(job::SpeedCode);
  const bool connected = speed > 0;
  std::string text;
  AppendTitle(text, kReportTitle);
  AppendField(text, kFaxNumberLabel, job.Text(job::FaxNumber));
  AppendField(text, kStatusLabel, StatusText(job.Number(job::Status)));
  AppendField(text, kDateTimeLabel, CurrentDateAndTime());
  AppendField(text, kResultLabel, job.Text(job::StatusInfo));
  AppendField(text, kRemoteIdLabel, job.Text(job::RemoteId));
  AppendField(text, kSpeedLabel, connected ? SpeedText(speed) : std::string(kPlaceholder));
  AppendField(text, kRetriesLabel, std::to_string(job.Number(job::NumRetries)));
  AppendField(text, kSentDurationLabel,
              connected ? DurationText(job.Number(job::CallDuration)) : std::string(kPlaceholder));
  AppendField(
      text, kPagesSentLabel,
      FormatNumbers(GetString(kPagesFormat), {static_cast<std::int32_t>(job.Number(job::PagesTransferred)),
                                              static_cast<std::int32_t>(job.Number(job::TotalPages))}));
  AppendField(text, kResolutionLabel,
              connected ? ResolutionText(job.Number(job::FineResolution)) : std::string(kPlaceholder));
  return Closed(std::move(text));
}

std::string FormatReceivedReport(const ReceiveRecordView &receive) {
  const std::int32_t speed = receive.Number(receive::SpeedCode);
  const bool connected = speed > 0;
  std::string text;
  AppendTitle(text, kReportTitle);
  AppendField(text, kStatusLabel, StatusText(receive.Number(receive::Result)));
  AppendField(text, kDateTimeLabel, CurrentDateAndTime());
  AppendField(text, kResultLabel, receive.Text(receive::Info));
  AppendField(text, kRemoteIdLabel, receive.Text(receive::RemoteId));
  AppendField(text, kSpeedLabel, connected ? SpeedText(speed) : std::string(kPlaceholder));
  AppendField(text, kReceivedDurationLabel,
              connected ? DurationText(receive.Number(receive::CallDuration)) : std::string(kPlaceholder));
  AppendField(text, kPagesReceivedLabel, std::to_string(receive.Number(receive::PagesReceived)));
  AppendField(
      text, kResolutionLabel,
      connected ? ResolutionText(receive.Number(receive::FineResolution)) : std::string(kPlaceholder));
  return Closed(std::move(text));
}

std::string FormatVoicemailReport(std::int32_t box, std::int32_t messageNumber, std::int32_t durationSeconds,
                                  std::int32_t sizeBytes, std::string_view dialledDigits) {
  char size[32];
  std::snprintf(size, sizeof size, kVoicemailSizeFormat, static_cast<long>(sizeBytes));
  std::string text;
  AppendTitle(text, kVoicemailTitle);
  AppendField(text, kMessageNumberLabel, std::to_string(messageNumber));
  AppendField(text, kDateTimeLabel, CurrentDateAndTime());
  AppendField(text, kVoicemailDurationLabel, DurationText(durationSeconds));
  AppendField(text, kSizeLabel, size);
  AppendField(text, kDigitsLabel, dialledDigits);
  AppendField(text, kBoxLabel, std::to_string(box));
  return Closed(std::move(text));
}

}  // namespace tqv
