#include "config/address_book.h"

#include <array>
#include <string>

#include "support/temp_dir.h"

namespace tqv {
namespace {

class AddressBook : public testing::TempDirTest {
 protected:
  // Stale bytes everywhere, so a field the lookup forgets to clear shows.
  JobRecord record_ = JobRecord::CopyOf(std::string(kJobRecordSize, 'x').data());

  void WriteAddressBook(const std::string &lines) const { WriteFile(WinDir() + "/TQVADDR.INI", lines); }

  // A party block as it must look: each text followed by zeros up to its 48 bytes.
  static std::string Block(const std::array<std::string, kPartyFieldCount> &fields) {
    std::string block;
    for (const std::string &text : fields)
      block += text + std::string(kPartyFieldSize - text.size(), '\0');
    return block;
  }
};

TEST_F(AddressBook, UnknownAddressGivesTheThreeDefaultsAndClearsTheRest) {
  WriteAddressBook("[other@example.com]\r\nLastName=Other\r\n");
  LookupAddressBook("anna@example.com", record_.View(), job::SenderParty, "Anna Berg", "Berg AG", "0301234");
  EXPECT_EQ(record_.View().Raw(job::SenderParty), Block({"Anna Berg", "", "Berg AG", "", "0301234", "", ""}));
  // Only the block asked for is written.
  EXPECT_EQ(record_.View().Raw(job::RecipientParty), std::string(kPartyBlockSize, 'x'));
  EXPECT_EQ(record_.Bytes()[job::SenderParty.offset - 1], 'x');
}

TEST_F(AddressBook, SectionFillsEveryFieldInBlockOrderCutTo46) {
  const std::string sixty(60, 'n');
  WriteAddressBook(
      "[+49 30 555]\r\nEmail=ben@example.com\r\nVoice=555-1\r\nFaxNo=555-2\r\nDepartment=Sales\r\n"
      "Company=Acme\r\nLastName=Brandt\r\nFirstName=" +
      sixty + "\r\n");
  LookupAddressBook("+49 30 555", record_.View(), job::RecipientParty, "x", "y", "z");
  EXPECT_EQ(record_.View().Raw(job::RecipientParty),
            Block({sixty.substr(0, 46), "Brandt", "Acme", "Sales", "555-2", "555-1", "ben@example.com"}));
}

TEST_F(AddressBook, SectionWithOnlyFaxNoKeepsTheNameDefaults) {
  WriteAddressBook("[carl]\r\nFaxNo=0049 89 1\r\n");
  const std::string longCompany(60, 'c');
  LookupAddressBook("carl", record_.View(), job::SenderParty, "Carl Dorn", longCompany, "089 2");
  EXPECT_EQ(record_.View().Raw(job::SenderParty),
            Block({"Carl Dorn", "", longCompany.substr(0, 46), "", "0049 89 1", "", ""}));
}

}  // namespace
}  // namespace tqv
