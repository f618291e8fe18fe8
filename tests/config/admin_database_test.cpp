// The administration database, tqvadmin.ini: where it lives, the per-user settings and lists its
// readers walk, and the writes that keep it the way they expect it (numbered lists without gaps
// after a removal, one entry per pair, a removed user gone from every section).
#include "config/admin_database.h"

#include <filesystem>
#include <string>
#include <vector>

#include "config/admin_database_fixture.h"
#include "config/blocked_numbers.h"
#include "config/routing_entries.h"
#include "config/user_details.h"
#include "config/user_list.h"
#include "config/user_properties.h"
#include "platform/profile.h"

namespace tqv {
namespace {

using AdminDatabase = testing::AdminDatabaseTest;
using AdminWrites = testing::AdminDatabaseTest;
using UserList = testing::AdminDatabaseTest;
using UserSettings = testing::AdminDatabaseTest;
using Entries = std::vector<std::string>;

TEST_F(AdminDatabase, UserSectionIsStoredUnderParenthesesButKeysKeepBrackets) {
  ASSERT_TRUE(AdminPutString("joe[1]@x", "DefaultCover", "Memo"));
  ASSERT_TRUE(AdminPutString("Recipient List", "joe[1]@x", "Joe One"));
  EXPECT_EQ(Database(), "[joe(1)@x]\nDefaultCover=Memo\n[Recipient List]\njoe[1]@x=Joe One\n");
  EXPECT_EQ(AdminGetString("JOE[1]@X", "defaultcover", "", 255), "Memo");
  // Cut first, mapped after: a "]" past character 510 cannot end the header early.
  EXPECT_EQ(AdminSectionName(std::string(509, 'a') + "[]"), std::string(509, 'a') + "(");
}

TEST_F(AdminDatabase, StartsFromTheProductDirectoryOfTheMachineFile) {
  ResetAdminDatabaseForTesting();
  ResetSettingsPathsForTesting();
  std::filesystem::create_directories(WinDir() + "/Corvanta");
  platform::ProfileWriteString("Corvanta", "Directory", Dir() + "\\", WinDir() + "/Corvanta/TQVMSERV.INI");
  InitAdminDatabase(3, 4, 6);
  ResetSettingsPathsForTesting();
  EXPECT_EQ(AdminDatabaseFile(), Dir() + "\\tqvadmin.ini");
  EXPECT_EQ(SavedFileLimit(SavedFileKind::Coverpage), 3);
  EXPECT_EQ(SavedFileLimit(SavedFileKind::Template), 4);
  EXPECT_EQ(SavedFileLimit(SavedFileKind::Fax), 6);
}

TEST_F(AdminDatabase, DirectoryTooLongForThePathLeavesNoDatabaseRatherThanAnotherFile) {
  // 247 characters and a separator leave 11 of the 12 that "tqvadmin.ini" needs.
  const std::string directory = Dir() + "/" + std::string(246 - Dir().size(), 'd');
  std::filesystem::create_directories(directory);
  InitAdminDatabase(directory, 10, 10, 10);
  EXPECT_FALSE(AdminPutString("FaxHeaders", "joe", "Joe"));
  EXPECT_EQ(GetUserProperties("joe"), kDefaultUserProperties);
  EXPECT_EQ(AdminGetString("FaxHeaders", "joe", "none", 3), "no");
  EXPECT_TRUE(std::filesystem::is_empty(directory));
  ASSERT_EQ(Events().size(), 1u);
  EXPECT_NE(Events()[0].find("too long"), std::string::npos) << Events()[0];

  InitAdminDatabase(directory.substr(0, directory.size() - 1), 10, 10, 10);
  EXPECT_EQ(AdminDatabaseFile().size(), 259u);
}

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

Entries AllUsers() {
  Entries users;
  for (std::optional<std::string> user = FirstUser(); user; user = NextUser())
    users.push_back(*user);
  return users;
}

// Every entry of the kind, "user|value", and the result that ended the walk.
std::pair<Entries, int> Walk(RouteKind kind, std::size_t size = 255) {
  Entries entries;
  RouteEntry entry;
  int result = FirstRoute(kind, size, size, entry);
  for (; result == kListEntry; result = NextRoute(size, size, entry))
    entries.push_back(entry.user + "|" + entry.value);
  return {entries, result};
}

TEST_F(UserList, UsersAreTheKeysOfRecipientListInFileOrder) {
  EXPECT_EQ(AllUsers(), Entries{});
  WriteDatabase(
      "[Recipients Properties]\nghost=1\n[recipient list]\nzoe@x=Zoe\nann[2]@x=Ann\n; note\nbob@x=\n");
  EXPECT_EQ(AllUsers(), (Entries{"zoe@x", "ann[2]@x", "bob@x"}));
  EXPECT_EQ(GetUserFullName("ANN[2]@X", 95), "Ann");
  EXPECT_EQ(GetUserFullName("zoe@x", 3), "Zo");
  EXPECT_EQ(GetUserFullName("nobody@x", 95), "nobody@x");
}

TEST_F(UserList, NamesBeyondTheListBufferAreNotSeen) {
  // 2000 names of 9 characters need 20000 bytes; the buffer keeps 16378 of them.
  std::string lines = "[Recipient List]\n";
  for (int i = 0; i < 2000; ++i)
    lines += "user" + std::to_string(10000 + i) + "=U\n";
  WriteDatabase(lines);
  const Entries users = AllUsers();
  ASSERT_EQ(users.size(), 1638u);
  EXPECT_EQ(users[1636], "user11636");
  EXPECT_EQ(users[1637], "user1163");
}

TEST_F(UserList, EachRouteKindIsItsOwnListEndedByAGapOrAnEntryWithoutComma) {
  WriteDatabase(
      "[Recipient List]\njoe=Joe\nann=Ann\n"
      "[Routing]\n"
      "csid_00000=joe,+49 89 1234\nCSID_00001=no comma\nCSID_00002=ann,+1 555\n"
      "OCRGR_00001=joe,Invoices\nOCRKW_00000=ann,order, delivery\nOCRKW_00001=\nOCRKW_00002=joe,late\n"
      "UNKNOWNROUTEITEM00000=bob,odd\n");
  EXPECT_EQ(Walk(RouteKind::Csid), std::pair(Entries{"joe|+49 89 1234"}, -1));
  EXPECT_EQ(Walk(RouteKind::OcrGroup), std::pair(Entries{}, 0));
  EXPECT_EQ(Walk(RouteKind::OcrKeyword), std::pair(Entries{"ann|order, delivery"}, 0));
  EXPECT_EQ(Walk(static_cast<RouteKind>(7)), std::pair(Entries{"bob|odd"}, 0));
  EXPECT_EQ(Walk(RouteKind::Csid, 4), std::pair(Entries{"joe|+49"}, -1));
}

TEST_F(UserList, CsidRouteGoesToTheFirstFreeIndexUnlessPresentInAnyCase) {
  WriteDatabase("[Routing]\nCSID_00000=Joe@X,ACME Fax\nCSID_00001=no comma\nCSID_00003=x,y\n");
  const std::string before = Database();
  EXPECT_EQ(AddCsidRoute("joe@x", "acme fax"), 0);
  EXPECT_EQ(AddCsidRoute("joe@x", "ACME Fax  "), 0);  // the file keeps no trailing blanks
  EXPECT_EQ(Database(), before);
  EXPECT_EQ(AddCsidRoute("", "ACME"), -1);
  EXPECT_EQ(AddCsidRoute("joe@x", " "), -1);
  EXPECT_EQ(AddCsidRoute("ann@x", "ACME Fax"), 0);
  EXPECT_EQ(Database(), before + "CSID_00002=ann@x,ACME Fax\n");
}

TEST_F(UserSettings, MissingPropertiesMeanNoFaxingAndTheWholeWordIsWrittenBack) {
  WriteDatabase("[Recipients Properties]\njoe@x=4128\nword=abc\nblank=\n");
  const std::pair<const char *, std::int32_t> cases[] = {
      {"missing", 0x1D00}, {"JOE@X", 4128}, {"word", 0}, {"blank", 0x1D00}};
  for (const auto &[user, expected] : cases)
    EXPECT_EQ(GetUserProperties(user), expected) << user;
  EXPECT_FALSE(HasProperty(GetUserProperties("missing"), UserProperty::SendFaxes));
  SetUserProperties("Joe@X", WithProperty(4128, UserProperty::HighResolution, true));
  EXPECT_EQ(Database(), "[Recipients Properties]\njoe@x=4144\nword=abc\nblank=\n");
}

TEST_F(UserSettings, BlockPatternDigitsMustBeginTheNumberDigits) {
  const std::tuple<const char *, const char *, bool> cases[] = {
      {"0049", "(0049) 30-5", true},
      {"0049", "049 89 1234", false},
      {"0049", "+49 89", false},
      {"+", "", true},
  };
  for (const auto &[pattern, number, blocked] : cases) {
    WriteDatabase(std::string("[Recipients Properties]\njoe=64\n[joe]\nB_00000=") + pattern + "\n");
    EXPECT_EQ(IsNumberBlocked("joe", number), blocked) << pattern << " / " << number;
  }
}

TEST_F(UserSettings, AnyBlockPatternBeforeAGapBlocksOnlyWithTheProperty) {
  const std::pair<const char *, bool> cases[] = {
      {"", false},  // the default properties lack BlockNumbers
      {"joe=7424", false},
      {"joe=65", true},
      {"joe=junk", false},
  };
  for (const auto &[properties, blocked] : cases) {
    WriteDatabase(std::string("[Recipients Properties]\n") + properties +
                  "\n[joe]\nB_00000=0190\nB_00001=0900\nB_00003=0180\n");
    EXPECT_EQ(IsNumberBlocked("JOE", "0900 1"), blocked) << properties;
    EXPECT_FALSE(IsNumberBlocked("joe", "0180 1")) << properties;
  }
}

TEST_F(UserSettings, FaxHeaderOnlyWhenNotEmpty) {
  WriteDatabase("[FaxHeaders]\njoe=ACME Ltd  +49 89 1234\nempty=\n");
  EXPECT_EQ(GetUserFaxHeader("JOE", 5), "ACME");
  EXPECT_EQ(GetUserFaxHeader("joe", 1), std::nullopt);
  EXPECT_EQ(GetUserFaxHeader("empty", 47), std::nullopt);
  EXPECT_EQ(GetUserFaxHeader("missing", 47), std::nullopt);
}

TEST_F(UserSettings, VoicemailBoxAndText) {
  using Entry = std::optional<std::pair<std::string, std::string>>;
  const std::pair<std::string, Entry> cases[] = {
      {"12345|Five digits", std::pair{"1234", "Five digits"}},
      {"||7||text|more", std::pair{"7", "text"}},
      {"1|" + std::string(600, 't'), std::pair{"1", std::string(46, 't')}},
      {"", std::nullopt},
  };
  for (const auto &[value, expected] : cases) {
    WriteDatabase("[VoiceMail]\njoe=" + value + "\n");
    const std::optional<VoicemailEntry> entry = GetUserVoicemail("joe", 47, 47);
    EXPECT_EQ(entry ? Entry(std::pair(entry->box, entry->text)) : std::nullopt, expected) << value;
  }
  WriteDatabase("[VoiceMail]\njoe=12345|x\n");
  EXPECT_EQ(GetUserVoicemail("joe", 3, 47)->box, "12");
}

TEST_F(UserSettings, OcrRatioKeepsLowEightBitsAndIsCappedAtOneHundred) {
  WriteDatabase("[Recipients OCR Ratios]\nr256=256\nr99=99\nr356=356\nneg=-1\nword=high\n");
  const std::pair<const char *, std::int32_t> cases[] = {
      {"missing", 100}, {"r256", 0}, {"r99", 99}, {"r356", 100}, {"neg", 100}, {"word", 0},
  };
  for (const auto &[user, expected] : cases)
    EXPECT_EQ(GetOcrRatio(user), expected) << user;
}

}  // namespace
}  // namespace tqv
