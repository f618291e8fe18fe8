// The cover page and the template of a job as styled paragraphs: placeholders filled with the
// job's party fields, the message text set on its template. Pure text work; it cannot fail.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "faxd/rtf_subset.h"

namespace tqv::faxd {

// A cover page's placeholders, each written within one run of text (one style):
//   <FROM_NAME> <FROM_COMPANY> <FROM_FAX> <FROM_VOICE> <FROM_EMAIL>
//   <TO_NAME> <TO_COMPANY> <TO_FAX> <TO_VOICE> <SUBJECT> <DATE> <PAGES>
using CoverFields = std::map<std::string, std::string, std::less<>>;

// Every "<NAME>" of `fields` replaced by its value; inserted text is not searched again, and an
// unknown placeholder stays as it is.
std::string FillPlaceholders(std::string_view text, const CoverFields &fields);
void FillPlaceholders(std::vector<StyledParagraph> &paragraphs, const CoverFields &fields);

// An RTF document's paragraphs, or those of plain text (a line each, 10-point Courier, a form
// feed starting a new page).
std::vector<StyledParagraph> ParagraphsOf(std::string_view document);

// The message text's lines as paragraphs on the template: in place of the paragraph holding
// <MESSAGE> (its text before and after kept as paragraphs of their own), or after the template.
std::vector<StyledParagraph> OnTemplate(std::vector<StyledParagraph> templateParagraphs,
                                        std::string_view message);

}  // namespace tqv::faxd
