// Job pages. Documents are rendered before the cover page, because the cover states the page
// count; the cover's own length comes from the layout, which needs no drawing.
#include "faxd/job_pages.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "faxd/document_renderer.h"
#include "faxd/header_line.h"
#include "faxd/rtf_subset.h"
#include "faxd/styled_page.h"
#include "faxd/text_page.h"
#include "platform/posix/native_path.h"
#include "tqv/host/host_records.h"

namespace tqv::faxd {

namespace {

namespace fs = std::filesystem;

std::string FileNameOf(const std::string &path) {
  return fs::path(path).filename().string();
}

// The bytes of a cover page, template or message text; false when it cannot be read. They are
// small documents: 4 MiB is more than any of them holds.
bool ReadDocument(const std::string &path, std::string &bytes) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  bytes.assign(std::istreambuf_iterator<char>(in), {});
  return bytes.size() <= 4 * 1024 * 1024;
}

bool Exists(const std::string &path) {
  std::error_code ignored;
  return !path.empty() && fs::is_regular_file(path, ignored);
}

void Append(std::vector<PageImage> &to, std::vector<PageImage> &from) {
  for (PageImage &page : from)
    to.push_back(std::move(page));
  from.clear();
}

std::string Native(const std::string &windowsPath) {
  return windowsPath.empty() ? std::string() : platform::ToNativePath(windowsPath);
}

}  // namespace

bool RenderJob(const JobDocuments &job, std::time_t sentAt, const RenderContext &context,
               std::vector<PageImage> &pages, std::string &error) {
  std::vector<PageImage> body, part;
  std::string why;
  if (!job.messageText.empty()) {
    std::string message, templateText;
    if (!ReadDocument(job.messageText, message)) {
      error = "the message text (" + FileNameOf(job.messageText) + ") cannot be read";
      return false;
    }
    // A template that is named but gone, or holds no text, leaves the message on plain paper in
    // the fixed-width layout.
    std::vector<StyledParagraph> templateParagraphs;
    if (Exists(job.templateFile) && ReadDocument(job.templateFile, templateText))
      templateParagraphs = ParagraphsOf(templateText);
    FillPlaceholders(templateParagraphs, job.coverFields);
    const bool onTemplate = std::any_of(templateParagraphs.begin(), templateParagraphs.end(),
                                        [](const StyledParagraph &p) { return !p.Text().empty(); });
    if (!(onTemplate ? RenderStyled(OnTemplate(templateParagraphs, message), context, part, why)
                     : RenderText(message, context, part, why))) {
      error = "the message text cannot be rendered: " + why;
      return false;
    }
    Append(body, part);
  }
  for (std::size_t i = 0; i < job.files.size(); ++i) {
    if (!RenderDocument(job.files[i], context, part, why)) {
      error = "document " + std::to_string(i + 1) + " (" + FileNameOf(job.files[i]) + ") " + why;
      return false;
    }
    Append(body, part);
  }
  pages.clear();
  if (!job.coverPage.empty()) {
    std::string cover;
    if (!ReadDocument(job.coverPage, cover)) {
      error = "the cover page (" + FileNameOf(job.coverPage) + ") cannot be read";
      return false;
    }
    // The layout tells the cover's own pages; the number of digits cannot change that.
    CoverFields fields = job.coverFields;
    fields["PAGES"] = std::to_string(body.size());
    std::vector<StyledParagraph> paragraphs = ParagraphsOf(cover);
    std::vector<StyledParagraph> filled = paragraphs;
    FillPlaceholders(filled, fields);
    fields["PAGES"] = std::to_string(body.size() + LayOutStyled(filled).size());
    FillPlaceholders(paragraphs, fields);
    if (!RenderStyled(paragraphs, context, pages, why)) {
      error = "the cover page cannot be rendered: " + why;
      return false;
    }
  }
  Append(pages, body);
  if (pages.empty()) {
    error = "the job has nothing to send (no cover page, message text or document)";
    return false;
  }
  if (!StampHeaderLines(pages, job.faxHeader, sentAt, context, why)) {
    error = "the header line cannot be drawn: " + why;
    return false;
  }
  return true;
}

JobDocuments DocumentsOfJob(const unsigned char *job, std::time_t sentAt) {
  using namespace tool::host_job;
  JobDocuments documents;
  documents.coverPage = Native(ReadText(job, CoverPageFile));
  documents.messageText = Native(ReadText(job, MessageTextFile));
  documents.textFileJob = ReadText(job, SenderEmail) == kTextFileSender;
  // A text-file job is printed on the text template, a message on its own template.
  const std::string textTemplate = Native(ReadText(job, TextTemplateFile));
  documents.templateFile =
      documents.textFileJob && Exists(textTemplate) ? textTemplate : Native(ReadText(job, TemplateFile));
  for (int i = 0; i < DocumentCount(job); ++i)
    documents.files.push_back(Native(ReadText(job, File(i))));
  documents.faxHeader = ReadText(job, FaxHeader);

  const auto party = [&](RawField block, PartyField field) { return ReadText(job, Party(block, field)); };
  const auto fullName = [&](RawField block) {
    std::string name = party(block, PartyField::FirstName);
    const std::string last = party(block, PartyField::LastName);
    if (!name.empty() && !last.empty()) name += ' ';
    return name + last;
  };
  std::string from = fullName(SenderParty);
  if (from.empty()) from = ReadText(job, SenderName);
  std::string to = fullName(RecipientParty);
  if (to.empty()) to = ReadText(job, RecipientName);
  std::string toFax = party(RecipientParty, PartyField::FaxNo);
  if (toFax.empty()) toFax = ReadText(job, FaxNumber);
  char date[32] = "";
  std::tm local{};
  if (localtime_r(&sentAt, &local)) std::strftime(date, sizeof date, "%Y-%m-%d %H:%M", &local);
  documents.coverFields = {
      {"FROM_NAME", from},
      {"FROM_COMPANY", party(SenderParty, PartyField::Company)},
      {"FROM_FAX", party(SenderParty, PartyField::FaxNo)},
      {"FROM_VOICE", party(SenderParty, PartyField::Voice)},
      {"FROM_EMAIL", party(SenderParty, PartyField::Email)},
      {"TO_NAME", to},
      {"TO_COMPANY", party(RecipientParty, PartyField::Company)},
      {"TO_FAX", toFax},
      {"TO_VOICE", party(RecipientParty, PartyField::Voice)},
      {"SUBJECT", ReadText(job, Subject)},
      {"DATE", date},
  };
  return documents;
}

}  // namespace tqv::faxd
