// The cover page and the message text of a job as text for the fixed-width layout. A cover page
// is an RTF document (the RTF subset) whose placeholders take the job's party fields:
//   <FROM_NAME> <FROM_COMPANY> <FROM_FAX> <FROM_VOICE> <FROM_EMAIL>
//   <TO_NAME> <TO_COMPANY> <TO_FAX> <TO_VOICE> <SUBJECT> <DATE> <PAGES>
// A template is an RTF document that the message text is printed on: at its <MESSAGE>
// placeholder, or after its text. Pure text work; it cannot fail.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace tqv::faxd {

using CoverFields = std::map<std::string, std::string, std::less<>>;

// Every "<NAME>" of `fields` replaced by its value; inserted text is not searched again, and an
// unknown placeholder stays as it is.
std::string FillPlaceholders(std::string_view text, const CoverFields &fields);

// The message text on a template's text (empty template = the message alone).
std::string OnTemplate(std::string_view templateText, std::string_view message);

}  // namespace tqv::faxd
