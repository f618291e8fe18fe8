#include "admin/admin_request.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "config/numbered_list.h"
#include "config/saved_file_defaults.h"
#include "config/saved_files.h"
#include "config/user_details.h"
#include "config/user_properties.h"
#include "host/entry_points.h"
#include "support/installation.h"

namespace tqv {
namespace {

namespace fs = std::filesystem;

// Ann administers; she has the installation's cover page and template (entry 0), a cover page
// Memo and her default template Old. Bob may fax but not administer. Texts read "E<number>".
class AdminRequest : public testing::InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    std::string strings = "[English]\r\nT670=[covers]\r\nT900=OK:\r\nT901=FAILED:\r\n";
    for (int n : {800, 801, 802, 803, 804, 806, 807, 809, 810, 811, 812, 813, 814,
                  815, 816, 817, 818, 820, 821, 822, 823, 824, 825, 828, 904, 905})
      strings +=
          "T" + std::to_string(n) + "=E" + std::to_string(n) + (n == 818 || n > 900 ? " %s" : " %d") + "\r\n";
    WriteFile(ProductDir() + "/tqstring.ini", strings);
    fs::create_directories(CoverDir());
    for (const char *name : {"std.rtf", "memo.rtf", "tmpl.rtf", "old.rtf"})
      WriteFile(CoverDir() + "/" + name, "{\\rtf}");
    WriteFile(ProductDir() + "/tqvadmin.ini",
              "[Recipients Properties]\r\nann=7425\r\nbob=1\r\n[ann]\r\nC_00000=COVERPGE," + CoverDir() +
                  "/std.rtf\r\nC_00001=Memo," + CoverDir() + "/memo.rtf\r\nT_00000=TEMPLATE," + CoverDir() +
                  "/tmpl.rtf\r\nT_00001=Old," + CoverDir() + "/old.rtf\r\nDefaultTemplate=old\r\n");
    ASSERT_EQ(host::Initialise(0, ""), 0);
  }

  std::string CoverDir() const { return ProductDir() + "/COVER"; }
  std::string Database() const { return ReadFile(ProductDir() + "/tqvadmin.ini"); }
  std::string Attach(std::string_view name, std::string_view bytes) const {
    WriteFile(PathOf(name), bytes);
    return PathOf(name);
  }
  // A request of ann with the message text; its one reply's subject, and " | " and the error
  // text when the listing has one. "(no single reply)" when it left none or several.
  std::string Request(const std::string &subject, const AttachmentTable &attachments = {},
                      const std::string &text = "", std::string_view user = "ann") {
    WriteFile(PathOf("tqvmesg.tmp"), text);
    HandleAdminRequest(user, subject, PathOf("tqvmesg.tmp"), attachments);
    std::vector<fs::path> replies;
    for (const auto &entry : fs::directory_iterator(GatewayIn()))
      if (entry.is_regular_file()) replies.push_back(entry.path());
    if (replies.size() != 1) return "(no single reply)";
    const std::string reply = ReadFile(replies[0].string());
    fs::remove(replies[0]);
    const std::size_t subjectAt = reply.find("Subject:") + 8;
    std::string outcome = reply.substr(subjectAt, reply.find("\r\n", subjectAt) - subjectAt);
    if (const std::size_t error = reply.find("###ERROR: "); error != std::string::npos)
      outcome += " | " + reply.substr(error + 10, reply.find("\r\n\r\n[covers]") - error - 10);
    return outcome;
  }
  std::string Default(bool cover) const {
    SavedFile file;
    cover ? GetDefaultCover("ann", 255, 260, file) : GetDefaultTemplate("ann", 255, 260, file);
    return file.name;
  }
  bool High() const { return HasProperty(GetUserProperties("ann"), UserProperty::HighResolution); }
};

TEST_F(AdminRequest, StoreAsDefaultGoesFirstAndAStoreOfTheSameNameReplacesIt) {
  EXPECT_EQ(Request("C=Letterhead,default", {Attach("letterhead.rtf", "{\\rtf one}")}),
            "OK: C=Letterhead,default");
  const std::string first = FindCover("ann", "letterhead", 260).value_or("");
  EXPECT_EQ(ReadListEntry("ann", "C_", 0), "COVERPGE," + CoverDir() + "/std.rtf");
  EXPECT_EQ(ReadListEntry("ann", "C_", 1), "Letterhead," + first);
  EXPECT_EQ(ReadListEntry("ann", "C_", 2), "Memo," + CoverDir() + "/memo.rtf");
  EXPECT_TRUE(std::regex_match(first, std::regex(R"(.*\\COVER\\[0-9A-F]{8}\.rtf)"))) << first;
  EXPECT_EQ(ReadFile(Native(first)), "{\\rtf one}");
  EXPECT_EQ(Default(true), "Letterhead");

  EXPECT_EQ(Request(" c = LETTERHEAD , Default ", {Attach("new.rtf", "{\\rtf two}")}),
            "OK:  c = LETTERHEAD , Default ");
  const std::string second = FindCover("ann", "Letterhead", 260).value_or("");
  EXPECT_EQ(ReadListEntry("ann", "C_", 1), "LETTERHEAD," + second) << "replaced in place";
  EXPECT_EQ(ReadListEntry("ann", "C_", 2), "Memo," + CoverDir() + "/memo.rtf");
  EXPECT_FALSE(Exists(Native(first))) << "the old stored file goes";
  EXPECT_EQ(ReadFile(Native(second)), "{\\rtf two}");
  EXPECT_EQ(FileNames(CoverDir()).size(), 5u);
}

TEST_F(AdminRequest, StoredFilesGetASafeExtensionAndNamesEndWithTheLine) {
  SetConfig("Saved Template Attachments", "CheckFormat", "0");
  EXPECT_EQ(Request("A=Terms,default", {Attach("terms", "II*\0")}), "OK: A=Terms,default | E803 %d");
  EXPECT_EQ(Request("T=Plain", {Attach("plain", "text")}), "OK: T=Plain");
  // After the last "." comes a separator: that extension would leave the directory.
  fs::create_directory(PathOf("odd.x"));
  // The reply's subject line shows the CR as a blank: no value carries a line end into a message.
  EXPECT_EQ(Request("T=Odd\rity,default", {Attach("odd.x/y", "text")}), "OK: T=Odd ity,default");
  EXPECT_TRUE(std::regex_match(FindAttachment("ann", "Terms", 260).value_or(""),
                               std::regex(R"(.*\\ATTACH\\[0-9A-F]{8}\.FAX)")));
  for (const char *name : {"Plain", "Odd"})
    EXPECT_TRUE(
        std::regex_match(FindTemplate("ann", name, 260).value_or(""), std::regex(".*[0-9A-F]{8}\\.RTF")))
        << name;
  EXPECT_EQ(Default(false), "old") << "only a request that says so changes the default";
}

TEST_F(AdminRequest, DeleteRemovesEntryAndFileAndADeletedDefaultTemplateFallsBack) {
  EXPECT_EQ(Request("c = memo , DELETE"), "OK: c = memo , DELETE");
  EXPECT_EQ(ReadListEntry("ann", "C_", 1), "");
  EXPECT_FALSE(Exists(CoverDir() + "/memo.rtf"));
  EXPECT_EQ(Request("TEMPLATE=OLD,delete"), "OK: TEMPLATE=OLD,delete");
  EXPECT_FALSE(Exists(CoverDir() + "/old.rtf"));
  EXPECT_EQ(Default(false), "TEMPLATE");
}

TEST_F(AdminRequest, RefusedRequestsChangeNothing) {
  const std::string rtf = Attach("x.rtf", "{\\rtf}");
  const std::string form = "Corvanta Remote Administration";
  // The reply names the subject and, after a failure, the error text; the setting is section, key,
  // value and the value afterwards.
  struct Case {
    std::string subject;
    AttachmentTable attachments;
    std::string text, error;  // no error: the reply says OK
    std::vector<std::string> setting = {};
    std::string user = "ann";
  } cases[] = {
      // clang-format off
      {"T=Letter,maybe", {rtf}, "", "E818 maybe"},
      {"C=a,default,x", {rtf}, "", "E825 %d"},
      {"A=a" + std::string(30, ','), {rtf}, "", "E825 %d"},
      {"c = Memo , DELETE", {rtf}, "", "E821 %d"},
      {"C=coverpge,delete", {}, "", "E823 %d"},
      {"t=Template,delete", {}, "", "E824 %d"},
      {"A=nothing,delete", {}, "", "E822 %d"},
      {"C=x", {"", rtf}, "", "E800 %d"},
      {"C=x", {rtf, rtf}, "", "E820 %d"},
      {"A=x,default", {PathOf("gone.tif")}, "", "E801 %d"},
      {"C=Memo", {rtf}, "", "E815 2", {"Saved Coverpage Attachments", "MaxFiles", "2", "10"}},
      {"T=x", {Attach("big.rtf", std::string(1001, 'x'))}, "", "E811 1000",
       {"Saved Template Attachments", "MaxSize", "1", "2000"}},
      {"C=x", {Attach("x.doc", "{\\rtf}")}, "", "E810 %d"},
      {"A=x", {Attach("x.tif", "MM\0*")}, "", "E814 %d"},
      {"T=template", {rtf}, "", "E802 %d"},
      {"Please store this", {rtf}, "", "E806 %d"},
      {"defaults", {rtf}, "C=Memo\r\n", "E807 %d"},
      {"DEFAULTS now", {}, "C=Memo\r\nR=high\r\nnonsense\r\n", "nonsense"},
      {"defaults", {}, "F=ACME\r\n Size = 10\r\n", " Size"},
      {"defaults", {}, "R=" + std::string(300, 'x'), "\r\nRESOLUTION=#" + std::string(100, 'x') + "#"},
      {"C=x", {rtf}, "", "E828 %d", {}, "bob"},
      {form, {rtf}, "TEMPLATE:0\r\nT=Old,delete\r\nTEMPLATE:0\r\nT=Memo,delete\r\n", "TEMPLATE"},
      {form, {rtf}, "COVERPAGE:1\r\nC=Letterhead\r\nstore this please\r\n", "storethisplease"},
      {form, {rtf}, "COVERPAGE:1\r\nC=" + std::string(600, 'x'), std::string(92, 'x')},
      {form, {rtf}, "SIGNATURE:1\r\nC=Letterhead\r\n", "SIGNATURE"},
      {form, {rtf}, "COVERPAGE:5\r\nC=Letterhead\r\nATTACHMENT:-1\r\nA=Terms\r\n", ""},
      {form, {rtf}, "defaults:\r\nF=ACME\r\n;;" + std::string(507, '-') + "\r\n;;" + std::string(505, '-'),
       ""},
      // clang-format on
  };
  for (const Case &c : cases) {
    if (!c.setting.empty()) SetConfig(c.setting[0], c.setting[1], c.setting[2]);
    const std::string database = Database();
    const std::vector<std::string> covers = FileNames(CoverDir());
    EXPECT_EQ(Request(c.subject, c.attachments, c.text, c.user),
              c.error.empty() ? "OK: " + c.subject : "FAILED: " + c.subject + " | " + c.error);
    EXPECT_EQ(Database(), database) << c.subject;
    EXPECT_EQ(FileNames(CoverDir()), covers) << c.subject;
    EXPECT_TRUE(FileNames(ProductDir() + "/ATTACH").empty()) << c.subject;
    if (!c.setting.empty()) SetConfig(c.setting[0], c.setting[1], c.setting[3]);
  }
}

TEST_F(AdminRequest, DefaultsBlockAppliesEveryKeyItCan) {
  EXPECT_EQ(Request("defaults", {}, "c = memo\r\n;; comment\r\n\r\nR=HIGH\r\nF=ACME Ltd\r\n"),
            "OK: defaults");
  EXPECT_EQ(Default(true), "memo");
  EXPECT_TRUE(High());
  EXPECT_EQ(GetUserFaxHeader("ann", 511), "ACME Ltd");

  EXPECT_EQ(Request("defaults", {}, "R=fine\r\nT=\r\nFax Header=Other\r\nCOVERPAGE=Nope\r\nT=Nope\r\nT=\r\n"),
            "FAILED: defaults | E904 Nope\r\nRESOLUTION=#fine#");
  EXPECT_TRUE(High());
  EXPECT_EQ(GetUserFaxHeader("ann", 511), "Other");
  EXPECT_EQ(Default(true), "memo");
  EXPECT_EQ(Default(false), "TEMPLATE");

  EXPECT_EQ(Request("defaults", {}, "T=Nope\r\nC=\r\nF=\r\nr=n\r\n"), "FAILED: defaults | \r\nE905 Nope");
  EXPECT_EQ(Default(true), "");
  EXPECT_EQ(GetUserFaxHeader("ann", 511), std::nullopt);
  EXPECT_FALSE(High());
}

TEST_F(AdminRequest, FormRunsItsCommandsInOrderAndTheDefaultsBlockLast) {
  const std::string form = "Corvanta remote ADMINISTRATION  ";
  const std::string block = ";; from here on\r\nR=high\r\nF=ACME Ltd\r\n;;" + std::string(507, '-') +
                            "\r\n;;" + std::string(476, '-') + "\r\n";
  EXPECT_EQ(
      Request(form, {Attach("letterhead.rtf", "{\\rtf}")},
              ";; Corvanta\r\n\r\nCOVER PAGE : 1\r\nC=Letterhead,default\r\nTEMPLATE:0\r\nT=Old,delete\r\n"
              "defaults:\r\n" +
                  block),
      "OK: " + form);
  EXPECT_EQ(Default(true), "Letterhead");
  EXPECT_FALSE(FindTemplate("ann", "Old", 260));
  EXPECT_TRUE(High());
  EXPECT_EQ(GetUserFaxHeader("ann", 511), "ACME Ltd");
  EXPECT_EQ(ReadFile(PathOf("tqvmesg.tmp")), block) << "a block of 1023 characters runs";

  const AttachmentTable two = {Attach("a.rtf", "{\\rtf a}"), Attach("b.rtf", "{\\rtf b}")};
  EXPECT_EQ(Request(form, two, "COVERPAGE:2\r\nC = Second\r\n\tTemplate:\t1x\r\nT=First\r\n"), "OK: " + form);
  EXPECT_EQ(ReadFile(Native(FindCover("ann", "Second", 260).value_or(""))), "{\\rtf b}");
  EXPECT_EQ(ReadFile(Native(FindTemplate("ann", "First", 260).value_or(""))), "{\\rtf a}");
  EXPECT_EQ(ReadFile(PathOf("tqvmesg.tmp")), " ");

  // Each command's text is followed by a line break; the last command run decides the result.
  EXPECT_EQ(
      Request(form, two, "ATTACHMENT:3\r\nA=Terms\r\nCOVERPAGE:1\r\nC=Memo,maybe\r\ndefaults:\r\nR=fine\r\n"),
      "FAILED: " + form + " | E818 maybe\r\nE800 %d\r\n\r\nRESOLUTION=#fine#");
  EXPECT_EQ(
      Request(form, two, "COVERPAGE:1\r\nC=Memo,maybe\r\nTEMPLATE:0\r\nT=Nope,delete\r\nATTACHMENT:0\r\n"),
      "FAILED: " + form + " | E818 maybe\r\nE822 %d\r\nE806 %d\r\n");
  EXPECT_EQ(Request(form, two, "TEMPLATE:0\r\nT=First,delete\r\nCOVERPAGE:0\r\nC=Memo,maybe\r\n"),
            "OK: " + form + " | E818 maybe\r\n");
}

}  // namespace
}  // namespace tqv
