#include "outgoing/dial_strings.h"

#include <gtest/gtest.h>

#include <string>

#include "config/service_state.h"
#include "config/settings_files.h"
#include "support/installation.h"

namespace tqv {
namespace {

using DialStrings = testing::InstallationTest;

TEST_F(DialStrings, InternationalFormBecomesWhatTheLocalNetworkDials) {
  struct Case {
    std::string prefix, country, area, number, dialled;
  };
  const Case cases[] = {
      {"00", "49", "89", "+49 (89) 123 456", " 123 456"},
      {"00", "49", "89", "+49 (30) 123 456", " (30) 123 456"},
      {"00", "49", "89", "+33 1 234 567", "0033 1 234 567"},
      {"00", "49", "89", "(89) 123 456", " 123 456"},
      {"00", "49", "89", "089 123 456", "089 123 456"},
      {"00", "49", "89", "(8 9)-1", "-1"},
      {"00", "49", "89", "(891) 1", "(891) 1"},
      {"", "49", "89", "+49 (89) 123 456", "+49 (89) 123 456"},
      {"+00", "+49", "(89)", "+49 (89) 123 456", " 123 456"},
      {"011", "1", "212", "+1 (212) 555-123", " 555-123"},
      {"011", "1", "212", "+1 (415) 555-123", "1 (415) 555-123"},
      {"011", "1", "212", "+44 20 794 600", "01144 20 794 600"},
      {"00", "49", "89", "+33" + std::string(100, '1'), "0033" + std::string(90, '1')},
  };
  for (const Case &c : cases) {
    std::string number = c.number;
    MakeDialString(number, kDialStringRoom, c.prefix, c.country, c.area);
    EXPECT_EQ(number, c.dialled) << c.number << " with " << c.prefix << "/" << c.country << "/" << c.area;
  }
  // Codes not given are those start-up read.
  CurrentService().internationalPrefix = "00";
  CurrentService().countryCode = "49";
  CurrentService().areaCode = "89";
  std::string number = "+49 (89) 1";
  MakeDialString(number, kDialStringRoom);
  EXPECT_EQ(number, " 1");
}

TEST_F(DialStrings, JfaxPatternsSelectNumbersAndGiveTheirMailAddress) {
  struct Case {
    const char *dial0, *dial1, *number;
    bool jfax;
  };
  const Case cases[] = {
      {"+44", "", "+44 20 794 600", true},
      {"+44", "", "0044 20 794 600", true},
      {"+44", "", "+49 89 123", false},
      {"", "+44", "+44 20 794 600", false},
      {"-", "+44", "+44 20 794 600", false},
      {"+49", "0044", "+44 20", true},
      {"\"0044 \"", "", "+44", true},
      {"\"0044 \"", "", "0044 20", false},
      {"+", "", "+", false},
  };
  for (const Case &c : cases) {
    SetConfig("JFAX Dial", "Dial0", c.dial0);
    SetConfig("JFAX Dial", "Dial1", c.dial1);
    EXPECT_EQ(IsJfaxNumber(c.number, "00"), c.jfax) << c.number << " with " << c.dial0 << "/" << c.dial1;
  }

  const auto address = [](std::string number) {
    MakeJfaxAddress(number, "00", kDialStringRoom);
    return number;
  };
  EXPECT_EQ(address("+44 20 794 600"), std::string("4420794600@") + kDefaultJfaxDomain);
  SetConfig("JFAX Dial", "Domain", " fax.example\t. org ");
  EXPECT_EQ(address("0044 20-794"), "4420794@fax.example.org");
  EXPECT_EQ(address(std::string(80, '1')), std::string(80, '1')) << "no room for the domain: digits only";
}

TEST_F(DialStrings, AddressesGiveNumberAndDisplayNameParts) {
  struct Case {
    const char *address, *number, *name, *company;
  };
  const Case cases[] = {
      {"089 123@FAXGATE", "089 123", "old", "oldco"},
      {"John_Smith.ACME.+49 89 123 <js@acme.com>", "+49 89 123", "John Smith", "ACME"},
      {"  Smith.089 123   <s@x>", "089 123", "Smith", "oldco"},
      {"A.B.0.1.2 <a@b>", "0.1.2", "A", "B"},
      {"089 123 <a@b>", "089 123", "old", "oldco"},
      {"a>b@c", "a>b", "old", "oldco"},
      {"x@y <z>", "x", "old", "oldco"},
      {"<a@b>", "", "old", "oldco"},
  };
  for (const Case &c : cases) {
    std::string number = "unset", name = "old", company = "oldco";
    ExtractFaxNumber(c.address, number, name, company);
    EXPECT_EQ(number + "|" + name + "|" + company, std::string(c.number) + "|" + c.name + "|" + c.company)
        << c.address;
  }

  // The characters are settings; without a separator the display name is not split.
  SetConfig("Intranet", "SpacePlaceholder", "+");
  SetConfig("Intranet", "NameCompanyFaxSeparator", "");
  std::string number, name = "old", company = "oldco";
  ExtractFaxNumber("Jo.Co.+1_2" + std::string(300, '3') + " <a@b>", number, name, company);
  EXPECT_EQ(number, "Jo.Co. 1_2" + std::string(84, '3'));
  EXPECT_EQ(name, "old");
}

}  // namespace
}  // namespace tqv
