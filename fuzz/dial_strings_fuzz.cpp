// The dial-string rules on arbitrary recipient addresses and dial settings. Input lines: the
// address, then the international prefix, the country code and the area code. Beyond crashes and
// sanitizer findings it aborts when a result outgrows its field or a JFAX address is malformed.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz_support.h"
#include "outgoing/dial_strings.h"

namespace {

namespace fs = std::filesystem;

// The [Phone Properties] values hold at most this many characters.
constexpr std::size_t kMaxPhoneSetting = 19;

using tqv::fuzz::Fail;

// An installation whose settings give JFAX patterns, a domain and the display-name characters.
void Install() {
  static const bool installed = [] {
    tqv::fuzz::InstallProduct(tqv::fuzz::Sandbox(),
                              "[JFAX Dial]\r\nDial0=+44\r\nDial1=0049 (89)\r\nDial2=\"1-800 \"\r\n"
                              "Domain= fax. example.net\r\n"
                              "[Intranet]\r\nSpacePlaceholder=_\r\nNameCompanyFaxSeparator=.\r\n");
    return true;
  }();
  (void)installed;
}

std::vector<std::string> Lines(std::string_view text) {
  std::vector<std::string> lines;
  for (std::size_t start = 0; lines.size() < 4;) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    lines.emplace_back(text.substr(start, end - start));
    if (end == text.size()) break;
    start = end + 1;
  }
  lines.resize(4);
  for (std::size_t i = 1; i < lines.size(); ++i)
    if (lines[i].size() > kMaxPhoneSetting) lines[i].resize(kMaxPhoneSetting);
  return lines;
}

bool AllDigits(std::string_view text) {
  return text.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Install();
  const std::vector<std::string> lines = Lines(std::string_view(reinterpret_cast<const char *>(data), size));
  const std::string &address = lines[0];
  const std::string &prefix = lines[1];

  std::string number, name, company;
  tqv::ExtractFaxNumber(address, number, name, company);
  if (number.size() > tqv::kMaxFaxNumber || name.size() > tqv::kMaxAddressName ||
      company.size() > tqv::kMaxAddressCompany)
    Fail("an address part outgrew its field");

  for (const std::string &source : {number, address}) {
    std::string dialled = source;
    tqv::MakeDialString(dialled, tqv::kDialStringRoom, prefix, lines[2], lines[3]);
    if (dialled.size() > tqv::kMaxFaxNumber) Fail("a dial string longer than 94 characters");
  }

  const bool jfax = tqv::IsJfaxNumber(number, prefix);
  std::string jfaxAddress = number;
  tqv::MakeJfaxAddress(jfaxAddress, prefix, tqv::kDialStringRoom);
  if (jfaxAddress.size() > tqv::kMaxFaxNumber) Fail("a JFAX address longer than 94 characters");
  const std::size_t at = jfaxAddress.find('@');
  if (!AllDigits(jfaxAddress.substr(0, at))) Fail("a JFAX address with more than digits before '@'");
  if (at != std::string::npos && jfaxAddress.substr(at) != "@fax.example.net")
    Fail("a JFAX address with a wrong domain");
  if (jfax && (at == 0 || jfaxAddress.empty())) Fail("a JFAX number without digits");
  return 0;
}
