#include "outgoing/option_lines.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "config/admin_database.h"
#include "config/message_strings.h"
#include "config/service_state.h"
#include "platform/clock.h"
#include "platform/text_mode.h"
#include "support/installation.h"

namespace tqv {
namespace {

using Tokens = std::vector<std::string>;

class OptionLines : public testing::InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    WriteStrings(
        "T700=unreadable\nT701=not an option line\nT707=second options line\nT716=%d recipients\n"
        "T717=%d documents\nT718=no '%s'\nT719=missing '%s'\nT720=unknown '%s'\n");
    InitAdminDatabase(ProductDir(), 10, 10, 10);
    WriteFile(ProductDir() + "/tqvadmin.ini", "[joe]\r\nA_00000=terms," + PathOf("terms.doc") +
                                                  "\r\nA_00001=prices," + PathOf("prices") +
                                                  "\r\nA_00002=gone," + PathOf("gone.doc") + "\r\n");
    WriteFile(PathOf("terms.doc"), "terms");
    WriteFile(PathOf("prices"), "prices");
    std::filesystem::create_directory(PathOf("work"));
    CurrentService().workDirectory = PathOf("work");
  }

  void WriteStrings(std::string_view texts) const {
    WriteFile(ProductDir() + "/tqstring.ini", "[English]\n" + std::string(texts));
    InitStrings("Mail", ProductDir() + "/tqstring.ini", kLanguageEnglish);
  }

  // Reads the lines as a setup file with CR LF line ends.
  int Read(std::string_view lines) {
    WriteFile(PathOf("tqvsetup.tmp"), platform::ToTextMode(lines));
    return ReadOptionLines("joe", PathOf("tqvsetup.tmp"), recipients, recipientLimit, attachments,
                           attachmentLimit, options, error);
  }

  std::string Recipients() const {
    std::string text;
    for (const RecipientEntry &entry : recipients)
      text += entry.name + "|" + entry.company + "|" + entry.address + ";";
    return text;
  }

  std::string Options() const {
    return "h" + std::to_string(options.fineResolution) + " s" + std::to_string(options.skipQueue) + " b" +
           std::to_string(options.billingNumber) + " C[" + options.coverPageName + "] T[" +
           options.templateName + "]";
  }

  RecipientTable recipients{{"First", "first@x", ""}};
  std::size_t recipientLimit = kMessageRecipientLimit;
  AttachmentTable attachments{"own.doc"};
  std::size_t attachmentLimit = kMessageAttachmentLimit;
  FaxOptions options;
  std::string error;
};

TEST_F(OptionLines, TokensSplitAtSeparatorsButNotBetweenNumberTexts) {
  const std::pair<const char *, Tokens> cases[] = {
      {"Smith,0123,456", {"Smith", "0123,456"}},
      {"1,2,x,3", {"1,2", "x", "3"}},
      {"1;2 , 3;  x", {"1", "2 ", "3", "x"}},
      {"1,,2", {"1", ";2"}},
      {"h,", {"h", ""}},
      {"", {""}},
  };
  for (const auto &[text, tokens] : cases) {
    EXPECT_EQ(SplitOptionTokens(text, kOptionTokenLimit), tokens) << text;
  }
  EXPECT_EQ(SplitOptionTokens("a,b,c", 2), (Tokens{"a", "b;c"}));
}

TEST_F(OptionLines, RecipientLinesAddOrRenameTheFirst) {
  const std::pair<const char *, const char *> cases[] = {
      {"::0123 4567", "First||first@x;0123 4567||0123 4567;"},
      {"::  Smith,0123,456", "First||first@x;Smith||0123,456;"},
      {"::John , ACME Ltd ,  0123 \t", "First||first@x;John|ACME Ltd|0123;"},
      {"::h,0800", "First||first@x;h||0800;"},
      {"::Sales,0", "Sales||first@x;"},
      {"::Sales,Widgets,0", "Sales|Widgets|first@x;"},
      {"::0", "0||first@x;"},
      {"::a,b,c,0123", "First||first@x;"},  // four tokens: the options line, refused
  };
  for (const auto &[line, table] : cases) {
    recipients = {{"First", "first@x", ""}};
    Read(line);
    EXPECT_EQ(Recipients(), table) << line;
  }
  recipients.clear();
  EXPECT_EQ(Read("::Sales,0\n::" + std::string(100, 'n') + "," + std::string(100, '1')), 0);
  EXPECT_EQ(Recipients(), std::string(94, 'n') + "||" + std::string(94, '1') + ";");

  recipientLimit = 1;
  EXPECT_EQ(Read("::Sales,0"), -1);
  EXPECT_EQ(error, "1 recipients");
}

TEST_F(OptionLines, OptionsLineTokensApplyInTurnAndOnlyOnce) {
  const std::pair<const char *, const char *> cases[] = {
      {"::H", "h1 s0 b0 C[] T[]"},
      {"::High,skipqueue", "h1 s1 b0 C[] T[]"},
      {"::s,T=Letter,h,n", "h0 s1 b0 C[] T[Letter]"},
      {"::C=none", "h0 s0 b0 C[none] T[]"},
      {"::c = Price list,template=Memo", "h0 s0 b0 C[Price list] T[Memo]"},
      {"::COVERPAGE=a=b", "h0 s0 b0 C[a=b] T[]"},
      {"::B12x", "h0 s0 b12 C[] T[]"},
      {"::b-5,b 7", "h0 s0 b7 C[] T[]"},
      {"::N", "unknown 'N'"},
      {"::S", "unknown 'S'"},
      {"::normal,h,", "unknown ''"},
      {"::b0", "unknown 'b0'"},
      {"::b12345678", "unknown 'b12345678'"},
      {"::x,h,y", "unknown 'y'"},
      {"::h\n\n::1", "not an option line"},
      {"::1\n:h", "not an option line"},
      {"::h\n::2\n::s", "second options line"},
  };
  for (const auto &[line, outcome] : cases) {
    options = FaxOptions{};
    error.clear();
    const int result = Read(line);
    EXPECT_EQ(result == 0 ? Options() : error, outcome) << line;
    EXPECT_EQ(result, error.empty() ? 0 : -1) << line;
  }
  Read("::C=" + std::string(70, 'c'));
  EXPECT_EQ(options.coverPageName, std::string(62, 'c'));
  EXPECT_EQ(ReadOptionLines("joe", PathOf("missing"), recipients, 1024, attachments, 16, options, error), -1);
  EXPECT_EQ(error, "unreadable");
}

// A local time on one day of March 2024; out-of-range values roll over.
std::int32_t March5(int hour, int minute, int second) {
  std::tm moment = platform::LocalTime(1709640000);
  moment.tm_hour = hour, moment.tm_min = minute, moment.tm_sec = second;
  return static_cast<std::int32_t>(std::mktime(&moment));
}

TEST_F(OptionLines, TimeOfDayIsTodayUntilItsMinuteHasPassed) {
  const std::tuple<std::int32_t, const char *, std::int32_t> cases[] = {
      {March5(12, 30, 40), "12:30", March5(12, 30, 40)},
      {March5(12, 31, 15), "12:30", March5(12, 30, 15) + 86400},
      {March5(13, 10, 0), "12:30", March5(12, 30, 0) + 86400},
      {March5(8, 0, 5), "9:05", March5(9, 5, 5)},
      {March5(8, 0, 5), "25:70", March5(26, 10, 5)},
  };
  for (const auto &[now, token, expected] : cases) {
    platform::SetCurrentTimeSource([now] { return now; });
    std::int32_t sendTime = 0;
    EXPECT_TRUE(ParseSendTime(token, sendTime)) << token;
    EXPECT_EQ(sendTime, expected) << token << " at " << now;
  }
  for (const char *token : {"123:45", "12:3", "12:345", ":30", "1230", "1a:30", "12:3x"}) {
    std::int32_t sendTime = 0;
    EXPECT_FALSE(ParseSendTime(token, sendTime)) << token;
  }
}

TEST_F(OptionLines, SavedAttachmentsAreCopiedAfterTheMessagesOwn) {
  EXPECT_EQ(Read("::A=terms,attachment=PRICES"), 0);
  ASSERT_EQ(attachments.size(), 3u);
  EXPECT_EQ(attachments[0], "own.doc");
  EXPECT_TRUE(attachments[1].ends_with(".doc")) << attachments[1];
  EXPECT_TRUE(attachments[2].ends_with(".FAX")) << attachments[2];
  EXPECT_EQ(ReadFile(Native(attachments[1])), "terms");
  EXPECT_EQ(ReadFile(Native(attachments[2])), "prices");

  const std::pair<const char *, const char *> failures[] = {
      {"::A=other", "no 'other'"}, {"::A=gone", "missing 'gone'"}, {"::A=terms,A=terms", "4 documents"}};
  attachmentLimit = 4;
  for (const auto &[line, message] : failures) {
    EXPECT_EQ(Read(line), -1) << line;
    EXPECT_EQ(error, message) << line;
  }
  EXPECT_EQ(attachments.size(), 4u);
}

TEST_F(OptionLines, ErrorTextTakesTheValueOnlyWhereItsKindFits) {
  WriteStrings("T716=%s and %5d%% of %d\nT720=%-.3s:%s\n");
  recipientLimit = 0;
  Read("::1");
  EXPECT_EQ(error, "%s and     0% of %d");
  Read("::" + std::string(200, 'x'));
  EXPECT_EQ(error, "xxx:%s");
}

}  // namespace
}  // namespace tqv
