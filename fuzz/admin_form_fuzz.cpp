// An administration request as a user might mail it: the first line is the subject, the rest the
// message text; a subject that ends in a blank comes without an attached file. Beyond crashes and sanitizer
// findings it aborts when a result is neither 0 nor -1, when the error text outgrows its buffer, or when a
// stored file is left that no saved-file entry names.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <string>

#include "admin/admin_commands.h"
#include "admin/admin_error_text.h"
#include "admin/admin_form.h"
#include "config/admin_database.h"
#include "config/message_strings.h"
#include "config/service_state.h"
#include "config/settings_files.h"
#include "fuzz_support.h"
#include "reports/admin_listing.h"

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t kMaxFiles = 3;

using tqv::fuzz::Fail;
using tqv::fuzz::WriteBytes;

std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
  return text;
}

// A product directory whose settings allow three small files of each kind, a string file with
// careless placeholders, and two attached files. Made on first use, removed at exit.
const fs::path &Sandbox() {
  static const bool ready = [] {
    const fs::path &sandbox = tqv::fuzz::Sandbox();
    for (const char *sub : {"COVER", "ATTACH", "in"})
      fs::create_directories(sandbox / sub);
    std::string config;
    for (const char *section :
         {"Saved Coverpage Attachments", "Saved Template Attachments", "Saved Fax Attachments"})
      config += std::string("[") + section + "]\r\nMaxFiles=" + std::to_string(kMaxFiles) +
                "\r\nMaxSize=1\r\nCheckFormat=1\r\n";
    tqv::fuzz::InstallProduct(sandbox, config);
    WriteBytes(sandbox / "tqstring.ini",
               "[English]\r\nT800=none\r\nT809=%s %n\r\nT815=%-2000d\r\n"
               "T818=%.3s %s %d\r\nT904=%300s\r\nT905=%%s\r\n");
    WriteBytes(sandbox / "in/letter.rtf", "{\\rtf letter}");
    WriteBytes(sandbox / "in/page.tif", "II*");
    tqv::InitAdminDatabase(sandbox.string(), kMaxFiles, kMaxFiles, kMaxFiles);
    tqv::InitStrings("Mail", (sandbox / "tqstring.ini").string(), tqv::kLanguageEnglish);
    tqv::CurrentService().coverDirectory = (sandbox / "COVER").string();
    tqv::CurrentService().attachmentDirectory = (sandbox / "ATTACH").string();
    return true;
  }();
  (void)ready;
  return tqv::fuzz::Sandbox();
}

// Entry 0 of the cover pages and templates, a saved cover page and template, nothing stored.
void ResetDatabase() {
  for (const char *sub : {"COVER", "ATTACH"})
    for (const auto &entry : fs::directory_iterator(Sandbox() / sub))
      fs::remove(entry.path());
  WriteBytes(Sandbox() / "tqvadmin.ini",
             "[Recipients Properties]\r\njoe=256\r\n[joe]\r\nC_00000=COVERPGE,std.rtf\r\nC_00001=Memo," +
                 (Sandbox() / "COVER/memo.rtf").string() +
                 "\r\nT_00000=TEMPLATE,tmpl.rtf\r\nDefaultTemplate=Memo\r\n");
  WriteBytes(Sandbox() / "COVER/memo.rtf", "{\\rtf}");
}

void CheckStoredFiles() {
  const std::string database = Upper(tqv::fuzz::ReadBytes(Sandbox() / "tqvadmin.ini"));
  for (const char *sub : {"COVER", "ATTACH"})
    for (const auto &entry : fs::directory_iterator(Sandbox() / sub))
      if (database.find(Upper(entry.path().filename().string())) == std::string::npos)
        Fail("a stored file that no entry names");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const fs::path text = Sandbox() / "tqvmesg.tmp";
  const std::string input(reinterpret_cast<const char *>(data), size);
  const std::size_t lineEnd = std::min(input.find('\n'), input.size());
  const std::string subject = input.substr(0, std::min<std::size_t>(lineEnd, tqv::kMaxCommandText));
  std::ofstream(text, std::ios::binary | std::ios::trunc)
      << input.substr(std::min(lineEnd + 1, input.size()));
  ResetDatabase();

  const tqv::AttachmentTable attachments = {(Sandbox() / "in/letter.rtf").string(),
                                            (Sandbox() / "in/page.tif").string()};
  std::string errorText;
  const int result =
      tqv::BeginsWithWord(subject, tqv::kAdminFormSubject)
          ? tqv::RunAdminForm("joe", text.string(), attachments, errorText, tqv::kAdminCommandRoom)
          : tqv::RunAdminCommand("joe", subject, text.string(), subject.ends_with(' ') ? "" : attachments[0],
                                 {}, errorText, tqv::kAdminCommandRoom);
  if (result != 0 && result != -1) Fail("a result other than 0 and -1");
  if (errorText.size() >= tqv::kAdminCommandRoom) Fail("an error text that outgrew its buffer");
  if (tqv::FormatAdminListing("joe", errorText).size() >= tqv::kAdminListingSize) Fail("a listing too long");
  CheckStoredFiles();
  return 0;
}
