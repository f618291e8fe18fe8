// Address-book lookup for the sender and the recipient of a job. It cannot fail: whatever the
// file lacks is taken from the defaults, and every text is cut to its party field.
#include "config/address_book.h"

#include <iterator>
#include <string>

#include "platform/profile.h"

namespace tqv {

namespace {

struct AddressBookKey {
  PartyField field;
  std::string_view key;
};

// In the order of the party block, which is the order the keys are read in.
constexpr AddressBookKey kAddressBookKeys[] = {
    {PartyField::FirstName, "FirstName"}, {PartyField::LastName, "LastName"},
    {PartyField::Company, "Company"},     {PartyField::Department, "Department"},
    {PartyField::FaxNo, "FaxNo"},         {PartyField::Voice, "Voice"},
    {PartyField::Email, "Email"},
};
static_assert(std::size(kAddressBookKeys) == kPartyFieldCount);

// The profile read keeps one character less than the field's room, as the field itself does.
constexpr std::size_t kValueBufferSize = kPartyFieldSize - 1;

}  // namespace

void LookupAddressBook(std::string_view address, JobRecordView record, RawField partyBlock,
                       std::string_view firstName, std::string_view company, std::string_view faxNo) {
  record.SetRaw(partyBlock, std::string(kPartyBlockSize, '\0'));
  for (const AddressBookKey &entry : kAddressBookKeys) {
    std::string_view defaultValue;
    if (entry.field == PartyField::FirstName) defaultValue = firstName;
    if (entry.field == PartyField::Company) defaultValue = company;
    if (entry.field == PartyField::FaxNo) defaultValue = faxNo;
    const std::string value =
        platform::ProfileReadString(address, entry.key, defaultValue, kValueBufferSize, kAddressBookFile);
    record.SetText(job::Party(partyBlock, entry.field), value);
  }
}

}  // namespace tqv
