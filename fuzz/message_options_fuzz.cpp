// A message text as a user might write it: split into option lines and text, then the option
// lines read. Beyond crashes and sanitizer findings it aborts when a byte of the text is lost or
// doubled, or when a recipient, document, option or error text outgrows its field.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>

#include "config/admin_database.h"
#include "config/message_strings.h"
#include "config/service_state.h"
#include "fuzz_support.h"
#include "outgoing/body_splitting.h"
#include "outgoing/option_lines.h"
#include "platform/file_system.h"

namespace {

namespace fs = std::filesystem;

using tqv::fuzz::Fail;

// A product directory with a string file, one user with two saved attachments (one of them
// missing) and a work directory. Made on first use, removed at exit.
const fs::path &Sandbox() {
  static const bool ready = [] {
    const fs::path &sandbox = tqv::fuzz::Sandbox();
    fs::create_directory(sandbox / "work");
    tqv::fuzz::WriteBytes(sandbox / "terms.doc", "terms");
    tqv::fuzz::WriteBytes(sandbox / "tqvadmin.ini",
                          "[joe]\r\nA_00000=terms," + (sandbox / "terms.doc").string() + "\r\nA_00001=gone," +
                              (sandbox / "gone").string() + "\r\n");
    // Placeholders of the wrong kind and widths, as a careless translation might have them.
    tqv::fuzz::WriteBytes(
        sandbox / "tqstring.ini",
        "[English]\r\nT700=unreadable\r\nT701=not options\r\nT707=twice\r\nT716=%s %d %d\r\n"
        "T717=%-300d%%\r\nT718=%.2s %s\r\nT719=%300s\r\nT720=%s %n %ld %*d\r\n");
    tqv::fuzz::InstallProduct(sandbox, "");
    tqv::InitAdminDatabase(sandbox.string(), 10, 10, 10);
    tqv::InitStrings("Mail", (sandbox / "tqstring.ini").string(), tqv::kLanguageEnglish);
    tqv::CurrentService().workDirectory = (sandbox / "work").string();
    return true;
  }();
  (void)ready;
  return tqv::fuzz::Sandbox();
}

std::size_t NonBlank(const std::string &bytes) {
  return static_cast<std::size_t>(std::count_if(
      bytes.begin(), bytes.end(), [](char c) { return c != '\r' && c != '\n' && c != ' ' && c != '\t'; }));
}

void CheckTables(const tqv::RecipientTable &recipients, const tqv::AttachmentTable &attachments,
                 const tqv::FaxOptions &options, const std::string &errorText) {
  if (recipients.size() > tqv::kMessageRecipientLimit) Fail("more recipients than the table holds");
  for (const tqv::RecipientEntry &entry : recipients)
    if (entry.name.size() > tqv::kMaxRecipientName || entry.address.size() > tqv::kMaxRecipientAddress ||
        entry.company.size() > tqv::kMaxRecipientCompany)
      Fail("a recipient field outgrew its buffer");
  if (attachments.size() > tqv::kMessageAttachmentLimit) Fail("more documents than the table holds");
  for (const std::string &path : attachments)
    if (path.size() > tqv::kMaxAttachmentPath) Fail("a document path longer than 259 characters");
  if (options.coverPageName.size() > tqv::kMaxOptionName || options.templateName.size() > tqv::kMaxOptionName)
    Fail("a cover-page or template name longer than 62 characters");
  if (errorText.size() > tqv::kMaxErrorText) Fail("an error text longer than 254 characters");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const fs::path body = Sandbox() / "tqvbody.tmp";
  const fs::path setup = Sandbox() / "tqvsetup.tmp";
  const fs::path text = Sandbox() / "tqvmesg.tmp";
  const std::string input(reinterpret_cast<const char *>(data), size);
  tqv::fuzz::WriteBytes(body, input);

  if (tqv::SplitBody(body.string(), setup.string(), text.string()) != 0) Fail("the split failed");
  const std::string setupBytes = tqv::fuzz::ReadBytes(setup);
  const std::string textBytes = tqv::fuzz::ReadBytes(text);
  // Outputs that were blank are gone, so only the bytes that are not blanks can be counted.
  const std::size_t inputBytes = NonBlank(input);
  const std::size_t outputBytes = NonBlank(setupBytes) + NonBlank(textBytes);
  // Only a lone ':' at the very end may go.
  if (outputBytes != inputBytes && !(input.ends_with(':') && outputBytes + 1 == inputBytes))
    Fail("bytes were lost or doubled by the split");
  if (fs::exists(setup) && !setupBytes.starts_with("::")) Fail("a setup file that does not begin with '::'");

  // One recipient of the message's own, as the conversion would have it, with room for one more.
  tqv::RecipientTable recipients{{"own", "0123", ""}};
  tqv::AttachmentTable attachments{"own.doc"};
  tqv::FaxOptions options;
  std::string errorText;
  if (fs::exists(setup)) {
    const int result =
        tqv::ReadOptionLines("joe", setup.string(), recipients, 2, attachments, 3, options, errorText);
    if (result != 0 && result != -1) Fail("a result other than 0 and -1");
    if ((result == 0) != errorText.empty()) Fail("an error text that does not match the result");
    if (recipients.size() > 2 || attachments.size() > 3) Fail("a table grew past its limit");
  }
  CheckTables(recipients, attachments, options, errorText);

  for (std::size_t i = 1; i < attachments.size(); ++i)
    tqv::platform::RemoveFile(attachments[i]);
  for (const fs::path &path : {body, setup, text})
    fs::remove(path);
  return 0;
}
