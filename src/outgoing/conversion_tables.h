// What the conversion of one message collects before it writes jobs: the recipients, the documents
// and the fax options. Every field keeps the length its job-record field can hold.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "common/text_limits.h"

namespace tqv {

// Entries a message may have in each table; text files have room for one document.
inline constexpr std::size_t kMessageRecipientLimit = 1024;
inline constexpr std::size_t kMessageAttachmentLimit = 16;
inline constexpr std::size_t kTextFileAttachmentLimit = 1;

// Characters of each recipient field (buffers of 96, 96 and 48 bytes).
inline constexpr std::size_t kMaxRecipientName = 94;
inline constexpr std::size_t kMaxRecipientAddress = 94;
inline constexpr std::size_t kMaxRecipientCompany = 46;
// Characters of a document path (entries of 261 bytes, used as path buffers).
inline constexpr std::size_t kMaxAttachmentPath = kMaxPath;
// Characters of a cover-page or template name chosen by an option (buffers of 64 bytes).
inline constexpr std::size_t kMaxOptionName = 62;

struct RecipientEntry {
  std::string name;
  std::string address;  // the fax number as written
  std::string company;
};

// In the order the recipients were added: the message's own first, then its option lines'.
using RecipientTable = std::vector<RecipientEntry>;
// Paths of the documents, in the order they are faxed.
using AttachmentTable = std::vector<std::string>;

// Applies to every job of one message. The conversion clears it and sets the resolution from the
// sender's properties; the options line only overrides.
struct FaxOptions {
  std::uint32_t skipQueue = 0;
  std::uint32_t fineResolution = 0;
  std::int32_t sendTime = 0;       // seconds since 1970; 0 sends at once
  std::int32_t billingNumber = 0;  // written to the job only when greater than 0
  std::string coverPageName;       // empty: the sender's default; "none" in any case: no cover page
  std::string templateName;        // empty: the sender's default
};

}  // namespace tqv
