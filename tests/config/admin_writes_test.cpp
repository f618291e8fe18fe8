// The writes that keep tqvadmin.ini the way its readers expect it: numbered lists without gaps
// after a removal, one entry per pair, and a removed user gone from every section.
#include <gtest/gtest.h>

#include "config/admin_database_fixture.h"
#include "config/blocked_numbers.h"
#include "config/routing_entries.h"
#include "config/user_details.h"
#include "config/user_list.h"
#include "config/user_properties.h"

namespace tqv {
namespace {

using AdminWrites = testing::AdminDatabaseTest;

// Removal moves the later entries up and drops the last key: the readers stop at the first gap,
// so a hole would hide every entry after it.
TEST_F(AdminWrites, RoutesComeAndGoWithoutLeavingAGap) {
  WriteDatabase(
      "[Routing]\nCSID_00000=ann,ACME\nCSID_00001=bob,Beta\nCSID_00002=ANN,Gamma\nCSID_00003=no comma\n"
      "CSID_00004=cid,Delta\nDTMF_00000=ann,12\n");
  EXPECT_EQ(RemoveRoutes(RouteKind::Csid, "ann", std::nullopt), 2);
  EXPECT_EQ(Database(),
            "[Routing]\nCSID_00000=bob,Beta\nCSID_00001=no comma\nCSID_00002=cid,Delta\nDTMF_00000=ann,12\n");
  EXPECT_EQ(RemoveRoutes(RouteKind::Csid, "cid", "delta  "), 1);
  EXPECT_EQ(RemoveRoutes(RouteKind::Csid, "bob", "Other"), 0);

  EXPECT_EQ(AddRoute(RouteKind::Dtmf, "ann", "12"), 0) << "present";
  EXPECT_EQ(AddRoute(RouteKind::OcrKeyword, "ann", "invoice "), 1);
  EXPECT_EQ(AddRoute(RouteKind::OcrKeyword, "Ann", "INVOICE"), 0);
  EXPECT_EQ(AddRoute(RouteKind::OcrKeyword, "ann", "  "), -1);
  EXPECT_EQ(AddCsidRoute("dan", "Echo"), 0);
  EXPECT_EQ(
      Database(),
      "[Routing]\nCSID_00000=bob,Beta\nCSID_00001=no comma\nDTMF_00000=ann,12\nOCRKW_00000=ann,invoice\n"
      "CSID_00002=dan,Echo\n");
}

TEST_F(AdminWrites, BlockedPatternsCompareByTheirDigits) {
  WriteDatabase("[Recipients Properties]\nann=64\n");
  EXPECT_TRUE(AddBlockedNumber("ann", "0049"));
  EXPECT_FALSE(AddBlockedNumber("ann", "00 49")) << "the same digits block the same numbers";
  EXPECT_TRUE(AddBlockedNumber("ann", "+1 900"));
  EXPECT_FALSE(AddBlockedNumber("ann", ""));
  EXPECT_TRUE(IsNumberBlocked("ann", "(0049) 30-5"));

  EXPECT_EQ(RemoveBlockedNumber("ann", "(00)49"), 1);
  EXPECT_FALSE(IsNumberBlocked("ann", "0049 30"));
  EXPECT_TRUE(IsNumberBlocked("ann", "1 900 555")) << "moved up to B_00000, still read";
  EXPECT_EQ(RemoveBlockedNumber("ann", "0049"), 0);
  EXPECT_EQ(Database(), "[Recipients Properties]\nann=64\n[ann]\nB_00000=+1 900\n");
}

TEST_F(AdminWrites, RemovedUserLeavesNothingBehindButOtherUsersKeepTheirs) {
  WriteDatabase(
      "[Recipient List]\nann=Ann\nbob=Bob\n[Recipients Properties]\nann=1\nbob=1\n[FaxHeaders]\nann=ACME\n"
      "[VoiceMail]\nann=12|Sales\n[Recipients OCR Ratios]\nann=80\n[ann]\nA_00000=x,C:\\x.pdf\nB_00000=0049\n"
      "[bob]\nB_00000=0044\n");
  EXPECT_TRUE(RemoveUser("ANN"));
  EXPECT_EQ(Database(),
            "[Recipient List]\nbob=Bob\n[Recipients Properties]\nbob=1\n[FaxHeaders]\n[VoiceMail]\n"
            "[Recipients OCR Ratios]\n[bob]\nB_00000=0044\n");
  EXPECT_EQ(GetUserProperties("ann"), kDefaultUserProperties);
}

TEST_F(AdminWrites, NewUserAndVoicemailBoxReadBackAsWritten) {
  EXPECT_TRUE(SetUserFullName("joe[1]", "Joe One"));
  SetUserVoicemail("joe[1]", "12", "Sales");
  ASSERT_TRUE(GetUserVoicemail("joe[1]", 47, 47));
  EXPECT_EQ(GetUserVoicemail("joe[1]", 47, 47)->text, "Sales");
  EXPECT_EQ(FirstUser(), "joe[1]");
  SetUserVoicemail("joe[1]", "7", "");
  EXPECT_EQ(Database(), "[Recipient List]\njoe[1]=Joe One\n[VoiceMail]\njoe[1]=7\n");
  SetUserVoicemail("joe[1]", "", "ignored");
  EXPECT_FALSE(GetUserVoicemail("joe[1]", 47, 47));
}

}  // namespace
}  // namespace tqv
