// The address book TQVADDR.INI: names, company, numbers and mail address of a party, one section
// per address as the job record holds it. A missing file or section gives the caller's defaults.
#pragma once

#include <string_view>

#include "common/job_record.h"

namespace tqv {

// The address book lives in the Windows directory, where a profile file without a directory goes.
inline constexpr std::string_view kAddressBookFile = "TQVADDR.INI";

// Clears `partyBlock` (job::SenderParty or job::RecipientParty) of `record` and fills its seven
// fields from the section `address`. A missing key gives the caller's default for FirstName,
// Company and FaxNo and an empty text for the others; a key present but empty gives empty.
// Every field keeps at most 46 characters.
void LookupAddressBook(std::string_view address, JobRecordView record, RawField partyBlock,
                       std::string_view firstName, std::string_view company, std::string_view faxNo);

}  // namespace tqv
