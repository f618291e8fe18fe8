// An administration request as a user might mail it: the first line is the subject, the rest the
// message text; a subject that ends in a blank comes without an attached file. Beyond crashes and sanitizer
// findings it aborts when a result is neither 0 nor -1, when the error text outgrows its buffer, or when a
// stored file is left that no saved-file entry names.
#include <stdlib.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "admin/admin_commands.h"
#include "admin/admin_error_text.h"
#include "admin/admin_form.h"
#include "config/admin_database.h"
#include "config/message_strings.h"
#include "config/service_state.h"
#include "config/settings_files.h"
#include "reports/admin_listing.h"

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t kMaxFiles = 3;

[[noreturn]] void Fail(const char *what) {
  std::fprintf(stderr, "admin_form_fuzz: %s\n", what);
  std::abort();
}

std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
  return text;
}

// A product directory whose settings allow three small files of each kind, a string file with
// careless placeholders, and two attached files. Made on first use, removed at exit.
const fs::path &Sandbox() {
  static const fs::path *directory = [] {
    std::string pattern = (fs::temp_directory_path() / "tqvfuzz.XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) Fail("cannot make a temporary directory");
    const fs::path *made = new fs::path(pattern);
    std::atexit([] {
      std::error_code ignored;
      fs::remove_all(*directory, ignored);
    });
    for (const char *sub : {"windows/Corvanta", "COVER", "ATTACH", "in"})
      fs::create_directories(*made / sub);
    std::ofstream(*made / "windows/Corvanta/TQVMSERV.INI") << "[Corvanta]\r\nDirectory=" << pattern << "\r\n";
    std::ofstream config(*made / "tqvconfg.ini");
    for (const char *section :
         {"Saved Coverpage Attachments", "Saved Template Attachments", "Saved Fax Attachments"})
      config << "[" << section << "]\r\nMaxFiles=" << kMaxFiles << "\r\nMaxSize=1\r\nCheckFormat=1\r\n";
    config.close();
    std::ofstream(*made / "tqstring.ini") << "[English]\r\nT800=none\r\nT809=%s %n\r\nT815=%-2000d\r\n"
                                             "T818=%.3s %s %d\r\nT904=%300s\r\nT905=%%s\r\n";
    std::ofstream(*made / "in/letter.rtf") << "{\\rtf letter}";
    std::ofstream(*made / "in/page.tif") << "II*";
    setenv("TQVSPOOL_WINDIR", (*made / "windows").c_str(), 1);
    tqv::InitAdminDatabase(pattern, kMaxFiles, kMaxFiles, kMaxFiles);
    tqv::InitStrings("Mail", (*made / "tqstring.ini").string(), tqv::kLanguageEnglish);
    tqv::CurrentService().coverDirectory = (*made / "COVER").string();
    tqv::CurrentService().attachmentDirectory = (*made / "ATTACH").string();
    return made;
  }();
  return *directory;
}

// Entry 0 of the cover pages and templates, a saved cover page and template, nothing stored.
void ResetDatabase() {
  for (const char *sub : {"COVER", "ATTACH"})
    for (const auto &entry : fs::directory_iterator(Sandbox() / sub))
      fs::remove(entry.path());
  std::ofstream(Sandbox() / "tqvadmin.ini")
      << "[Recipients Properties]\r\njoe=256\r\n[joe]\r\nC_00000=COVERPGE,std.rtf\r\nC_00001=Memo,"
      << (Sandbox() / "COVER/memo.rtf").string()
      << "\r\nT_00000=TEMPLATE,tmpl.rtf\r\nDefaultTemplate=Memo\r\n";
  std::ofstream(Sandbox() / "COVER/memo.rtf") << "{\\rtf}";
}

void CheckStoredFiles() {
  std::ifstream in(Sandbox() / "tqvadmin.ini", std::ios::binary);
  const std::string database = Upper(std::string(std::istreambuf_iterator<char>(in), {}));
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
