// The administration database, tqvadmin.ini: where it lives, the per-user settings, saved files and
// lists its readers walk, and the writes that keep it the way they expect it (numbered lists without
// gaps after a removal, one entry per pair, a removed user gone from every section).
#include "config/admin_database.h"

#include <filesystem>
#include <string>
#include <vector>

#include "config/admin_database_fixture.h"
#include "config/blocked_numbers.h"
#include "config/routing_entries.h"
#include "config/saved_file_defaults.h"
#include "config/saved_files.h"
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

class SavedFiles : public testing::AdminDatabaseTest {
 protected:
  // Every entry the iteration shows, "name|path", and the result that ended it.
  static std::pair<std::vector<std::string>, int> Walk(SavedFileKind kind, std::string_view user) {
    std::vector<std::string> entries;
    SavedFile file;
    int result = FirstSavedFile(kind, user, 255, 255, file);
    for (; result == kListEntry; result = NextSavedFile(255, 255, file))
      entries.push_back(file.name + "|" + file.path);
    return {entries, result};
  }

  std::string StoredFile(std::string_view name) const {
    WriteFile(PathOf(name), "bytes");
    return PathOf(name);
  }
};

TEST_F(SavedFiles, IterationEndsAtAGapOrAnEntryWithoutComma) {
  WriteDatabase(
      "[joe(1)]\nA_00000=Price list,C:\\1.DOC\nA_00001=Terms,C:\\2.DOC\nA_00003=Hidden,C:\\3.DOC\n"
      "C_00000=COVERPGE,C:\\0.CVP\nC_00001=Memo,C:\\1.CVP\nC_00002=no comma\nC_00003=After,C:\\x\n"
      "T_00001=Memo,C:\\1.TPL\n[joe]\nA_00000=" +
      std::string(300, 'n') + ",p\nA_00001=" + std::string(600, 'x') + ",p\n");
  EXPECT_EQ(Walk(SavedFileKind::Fax, "joe[1]"),
            std::pair(Entries{"Price list|C:\\1.DOC", "Terms|C:\\2.DOC"}, 0));
  EXPECT_EQ(Walk(SavedFileKind::Coverpage, "JOE[1]"),
            std::pair(Entries{"COVERPGE|C:\\0.CVP", "Memo|C:\\1.CVP"}, -1));
  EXPECT_EQ(CountSavedFiles(SavedFileKind::Coverpage, "joe[1]"), 2);
  // Readers start at index 0, so a template list without it is empty.
  EXPECT_EQ(CountSavedFiles(SavedFileKind::Template, "joe[1]"), 0);
  EXPECT_EQ(FindTemplate("joe[1]", "Memo", 255), std::nullopt);
  // Values are cut to 510 characters before the split, which can cut off the comma.
  EXPECT_EQ(Walk(SavedFileKind::Fax, "joe"), std::pair(Entries{std::string(254, 'n') + "|p"}, -1));
}

TEST_F(SavedFiles, FindTakesTheFirstNamedEntryInAnyCase) {
  InitAdminDatabase(Dir(), 10, 3, 10);
  WriteDatabase(
      "[joe]\nT_00000=TEMPLATE,t0\nT_00001=,nameless\nT_00002=Bare\nT_00003=Letter,t3\nT_00004=LETTER,t4\n"
      "T_00006=Hidden,t6\n");
  const std::pair<const char *, std::optional<std::string>> cases[] = {
      {"letter", "t3"}, {"template", "t0"}, {"BARE", ""}, {"", std::nullopt}, {"Hidden", std::nullopt},
  };
  for (const auto &[name, path] : cases) {
    EXPECT_EQ(FindTemplate("joe", name, 255), path) << name;
  }
  EXPECT_EQ(FindCover("joe", "Letter", 255), std::nullopt);
}

TEST_F(SavedFiles, AddWithAnExistingNameReplacesItInPlaceAndDeletesTheOldFile) {
  const std::string oldFile = StoredFile("old.cvp");
  WriteDatabase("[joe]\nC_00000=COVERPGE,c0\nC_00001=Bare\nC_00002=Urgent," + oldFile +
                "\nC_00003=Plain,c3\n");
  EXPECT_EQ(AddSavedFile(SavedFileKind::Coverpage, "joe", "URGENT", "new.cvp"), 0);
  EXPECT_EQ(Database(),
            "[joe]\nC_00000=COVERPGE,c0\nC_00001=Bare\nC_00002=URGENT,new.cvp\nC_00003=Plain,c3\n");
  EXPECT_FALSE(Exists(oldFile));
  // Saving the same file again must not delete it.
  const std::string same = StoredFile("same.cvp");
  EXPECT_EQ(AddSavedFile(SavedFileKind::Coverpage, "joe", "Plain", same), 0);
  EXPECT_EQ(AddSavedFile(SavedFileKind::Coverpage, "joe", "plain", same), 0);
  EXPECT_TRUE(Exists(same));
  // Reserved names are refused only for their own list.
  const std::string before = Database();
  EXPECT_EQ(AddSavedFile(SavedFileKind::Coverpage, "joe", "coverpge", "x"), -1);
  EXPECT_EQ(DeleteSavedFile(SavedFileKind::Template, "joe", "template"), -1);
  EXPECT_EQ(Database(), before);
  EXPECT_EQ(AddSavedFile(SavedFileKind::Fax, "joe", "COVERPGE", "y"), 0);
  EXPECT_EQ(FindAttachment("joe", "coverpge", 260), "y");
}

TEST_F(SavedFiles, AddNewNameMovesTheListDownBelowTheLimit) {
  InitAdminDatabase(Dir(), 10, 10, 3);
  const std::string droppedFile = StoredFile("dropped.doc");
  WriteDatabase(
      "[joe]\nT_00000=TEMPLATE,t0\nT_00001=One,t1\nT_00002=Two,t2\nT_00003=Three,t3\n"
      "A_00000=a,1\nA_00001=b,2\nA_00002=c," +
      droppedFile + "\n");
  EXPECT_EQ(AddSavedFile(SavedFileKind::Template, "joe", "New", "tn"), 0);
  EXPECT_EQ(Walk(SavedFileKind::Template, "joe"),
            std::pair(Entries{"TEMPLATE|t0", "New|tn", "One|t1", "Two|t2", "Three|t3"}, 0));
  EXPECT_EQ(AddSavedFile(SavedFileKind::Fax, "joe", "d", "4"), 0);
  EXPECT_EQ(Walk(SavedFileKind::Fax, "joe"), std::pair(Entries{"d|4", "a|1", "b|2"}, 0));
  EXPECT_TRUE(Exists(droppedFile));
  EXPECT_EQ(AddSavedFile(SavedFileKind::Coverpage, "joe", "Memo", "m"), 0);
  EXPECT_EQ(AdminGetString("joe", "C_00001", "", 255), "Memo,m");
}

TEST_F(SavedFiles, DeleteClosesTheGapAndLeavesTheOldLastKeyEmpty) {
  const std::string deleted = StoredFile("one.doc");
  WriteDatabase("[joe]\nC_00000=Standard,c0\nC_00001=Bare\nC_00002=One," + deleted +
                "\nC_00003=Two,t\nC_00004=Three,h\nC_00006=Late,l\n");
  // Never index 0, never an entry without comma, never past a gap.
  for (const char *name : {"Standard", "Bare", "Late", "Gone"}) {
    EXPECT_EQ(DeleteSavedFile(SavedFileKind::Coverpage, "joe", name), -1) << name;
  }
  EXPECT_EQ(DeleteSavedFile(SavedFileKind::Coverpage, "joe", "ONE"), 0);
  EXPECT_EQ(Database(),
            "[joe]\nC_00000=Standard,c0\nC_00001=Bare\nC_00002=Two,t\nC_00003=Three,h\nC_00004=\n"
            "C_00006=Late,l\n");
  EXPECT_FALSE(Exists(deleted));
}

constexpr const char *kLists =
    "[joe]\nC_00000=Standard,s0\nC_00001=Memo,m1\nC_00002=Bare\nC_00004=Hidden,h4\nT_00000=TEMPLATE,t0\n";

TEST_F(SavedFiles, DefaultGivesNameAndPathOfItsEntry) {
  const std::tuple<const char *, bool, const char *, const char *> cases[] = {
      {"DefaultCover=memo\n", true, "memo", "m1"},        {"DefaultCover=Bare\n", true, "Bare", ""},
      {"DefaultCover=Hidden\n", false, "Hidden", ""},  // past a gap
      {"DefaultCover=TEMPLATE\n", false, "TEMPLATE", ""}, {"", false, "", ""},
  };
  for (const auto &[line, found, name, path] : cases) {
    WriteDatabase(std::string(kLists) + line);
    SavedFile file{"stale", "stale"};
    EXPECT_EQ(GetDefaultCover("JOE", 255, 255, file), found) << line;
    EXPECT_EQ(file.name, name) << line;
    EXPECT_EQ(file.path, path) << line;
  }
  WriteDatabase(std::string(kLists) + "DefaultTemplate=template\n");
  SavedFile file;
  EXPECT_TRUE(GetDefaultTemplate("joe", 255, 3, file));
  EXPECT_EQ(file.path, "t0");
}

TEST_F(SavedFiles, SetDefaultWritesTheNameAsGivenOnlyWhenAnEntryHasIt) {
  WriteDatabase(std::string(kLists) + "DefaultCover=Standard\n");
  EXPECT_FALSE(SetDefaultCover("joe", "Hidden"));
  EXPECT_FALSE(SetDefaultTemplate("joe", "Memo"));
  EXPECT_EQ(Database(), std::string(kLists) + "DefaultCover=Standard\n");
  EXPECT_TRUE(SetDefaultCover("joe", "MEMO"));
  EXPECT_TRUE(SetDefaultTemplate("joe", "Template"));
  EXPECT_EQ(Database(), std::string(kLists) + "DefaultCover=MEMO\nDefaultTemplate=Template\n");
  EXPECT_TRUE(SetDefaultCover("joe", ""));
  EXPECT_EQ(Database(), std::string(kLists) + "DefaultTemplate=Template\n");
}

}  // namespace
}  // namespace tqv
