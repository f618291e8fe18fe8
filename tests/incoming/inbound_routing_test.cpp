#include "incoming/inbound_routing.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "config/admin_database_fixture.h"

namespace tqv {
namespace {

// ann, bob, dan and cid are routed by entries; "any" takes unrouted faxes, "all" every fax, and
// "rtd" (ReceiveRouted alone) none. cid uses OCR groups; bob's group entry is ignored, and eve's
// group without a keyword never matches. The entry without a comma hides CSID_00004.
constexpr std::string_view kDatabase =
    "[Recipient List]\nann=Ann\nbob=Bob\ncid=Cid\ndan=Dan\neve=Eve\nany=Any\nall=All\nrtd=Rtd\n"
    "[Recipients Properties]\nann=0\nbob=0\ncid=512\ndan=0\neve=512\nany=2\nall=6\nrtd=4\n"
    "[Recipients OCR Ratios]\nann=80\n"
    "[Routing]\nCSID_00000=ann,123 456\nCSID_00001=bob,ABC\nCSID_00002=cid,123456\n"
    "CSID_00003=no comma here\nCSID_00004=dan,XYZ\n"
    "DTMF_00000=dan,1 2\nDTMF_00001=bob,77\nDTMF_00002=ann,12\n"
    "OCRKW_00000=ann,INVOICE DEPARTMENT\nOCRGR_00000=cid,ACME\nOCRKW_00001=cid,ORDER\n"
    "OCRGR_00001=bob,ACME\nOCRKW_00002=bob,ORDER\nOCRGR_00002=eve,ORDER\n";

class InboundRouting : public testing::AdminDatabaseTest {
 protected:
  std::vector<std::string> RouteFax(const std::string &remoteId, const std::string &digits,
                                    std::optional<std::string> ocrText = std::nullopt,
                                    bool ocrAvailable = true) {
    std::array<unsigned char, kReceiveTouchedSize> record{};
    ReceiveRecordView receive(record.data());
    receive.SetText(receive::RemoteId, remoteId);
    receive.SetText(receive::DtmfDigits, digits);
    if (ocrText) WriteFile(PathOf("ocr.txt"), *ocrText);
    receive.SetNumber(receive::OcrAvailable, ocrAvailable ? 1u : 0u);
    receive.SetText(receive::OcrTextFile, PathOf("ocr.txt"));
    RecipientList list;
    Route(receive, list);
    std::vector<std::string> names;
    for (auto name = list.First(); name; name = list.Next())
      names.push_back(*name);
    return names;
  }
};

using Names = std::vector<std::string>;

TEST_F(InboundRouting, StationAndDigitRulesThenTheDefaultRecipients) {
  WriteDatabase(kDatabase);
  const struct {
    std::string remoteId, digits;
    Names expected;
  } cases[] = {
      {"12 34 56", "", {"ann", "cid", "all"}},  // blanks gone on both sides; both users in entry order
      {"abc", "", {"bob", "all"}},
      {"xyz", "", {"any", "all"}},  // behind the malformed entry
      {" \t", "", {"any", "all"}},
      {"", "12", {"dan", "ann", "all"}},
      {"", "1 2", {"any", "all"}},                       // the received digits are not converted
      {"12 34 56", "12", {"ann", "cid", "dan", "all"}},  // ann once, where the first rule put her
  };
  for (const auto &c : cases)
    EXPECT_EQ(RouteFax(c.remoteId, c.digits, std::nullopt, false), c.expected)
        << c.remoteId << "/" << c.digits;
}

TEST_F(InboundRouting, RecognisedTextRoutesByKeywordsAndGroups) {
  WriteDatabase(kDatabase);
  const struct {
    std::string text;
    Names expected;
  } cases[] = {
      // ann's ratio of 80 lets INV0ICE DEPARTNENT through; cid's group leads the keyword.
      {"Re: ACME order 4711\r\nto the INV0ICE DEPARTNENT\r\n", {"ann", "bob", "cid", "all"}},
      {"order ACME x\r\n", {"bob", "all"}},
      {"nothing to see\r\n", {"any", "all"}},
      {"", {"any", "all"}},
  };
  for (const auto &c : cases)
    EXPECT_EQ(RouteFax("", "", c.text), c.expected) << c.text;

  EXPECT_EQ(RouteFax("", "", "ORDER\r\n", false), (Names{"any", "all"})) << "recognised text not available";
  std::filesystem::remove(PathOf("ocr.txt"));
  EXPECT_EQ(RouteFax("", ""), (Names{"any", "all"})) << "recognised text missing";
}

}  // namespace
}  // namespace tqv
