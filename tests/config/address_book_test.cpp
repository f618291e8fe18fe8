#include "config/address_book.h"

#include <array>
#include <string>

#include "support/temp_dir.h"

namespace tqv {
namespace {

using AddressBook = testing::TempDirTest;

// A party block as it must look: each text followed by zeros up to its 48 bytes.
std::string Block(const std::array<std::string, kPartyFieldCount> &fields) {
  std::string block;
  for (const std::string &text : fields)
    block += text + std::string(kPartyFieldSize - text.size(), '\0');
  return block;
}

TEST_F(AddressBook, SectionKeysOverrideTheThreeDefaultsAndEveryFieldIsCutTo46) {
  const std::string sixty(60, 'n');
  const struct {
    std::string file;
    std::array<std::string, kPartyFieldCount> expected;
  } cases[] = {
      // No section: the three defaults, the rest cleared.
      {"[other]\r\nLastName=Other\r\n", {"Anna", "", sixty.substr(0, 46), "", "0301", "", ""}},
      {"[addr]\r\nFaxNo=0049 89 1\r\n", {"Anna", "", sixty.substr(0, 46), "", "0049 89 1", "", ""}},
      {"[addr]\r\nEmail=b@x\r\nVoice=5-1\r\nFaxNo=5-2\r\nDepartment=Sales\r\nCompany=Acme\r\n"
       "LastName=Brandt\r\nFirstName=" +
           sixty + "\r\n",
       {sixty.substr(0, 46), "Brandt", "Acme", "Sales", "5-2", "5-1", "b@x"}},
  };
  for (const auto &c : cases) {
    // Stale bytes everywhere, so a field the lookup forgets to clear shows.
    JobRecord record = JobRecord::CopyOf(std::string(kJobRecordSize, 'x').data());
    WriteFile(WinDir() + "/TQVADDR.INI", c.file);
    LookupAddressBook("addr", record.View(), job::SenderParty, "Anna", sixty, "0301");
    EXPECT_EQ(record.View().Raw(job::SenderParty), Block(c.expected)) << c.file;
    // Only the block asked for is written.
    EXPECT_EQ(record.View().Raw(job::RecipientParty), std::string(kPartyBlockSize, 'x'));
    EXPECT_EQ(record.Bytes()[job::SenderParty.offset - 1], 'x');
  }
}

}  // namespace
}  // namespace tqv
