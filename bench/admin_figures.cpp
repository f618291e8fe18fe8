// Figures of the administration database: the library reads tqvadmin.ini through its profile
// cache, so a walk over every user, or the routing of a fax over every OCR entry, should cost a
// few parses of the file, not one per user or entry.
#include <array>
#include <cstdint>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "bench_checks.h"
#include "common/receive_record.h"
#include "config/numbered_list.h"
#include "config/routing_entries.h"
#include "config/user_properties.h"
#include "figure.h"
#include "incoming/ocr_matching.h"
#include "library_run.h"
#include "platform/ini_document.h"

namespace tqv::bench {

namespace {

constexpr int kUsers = 800;

std::string UserName(int number) {
  return "user" + std::to_string(number) + "@example.com";
}

// A third of the users may not send faxes; a third route by OCR groups.
std::int32_t PropertiesOf(int user) {
  std::int32_t properties = kDefaultUserProperties;
  if (user % 3 != 0) properties |= static_cast<std::int32_t>(UserProperty::SendFaxes);
  if (user % 3 == 1) properties |= static_cast<std::int32_t>(UserProperty::OcrGroupRouting);
  return properties;
}

int FaxUsers() {
  int count = 0;
  for (int i = 0; i < kUsers; ++i)
    count += HasProperty(PropertiesOf(i), UserProperty::SendFaxes) ? 1 : 0;
  return count;
}

// Users with their names, properties, fax headers, OCR ratios and a section each of saved files
// and a blocked number, then the routing entries.
std::string UsersText() {
  std::ostringstream text;
  text << "[Recipient List]\r\n";
  for (int i = 0; i < kUsers; ++i)
    text << UserName(i) << "=User Number " << i << "\r\n";
  text << "[Recipients Properties]\r\n";
  for (int i = 0; i < kUsers; ++i)
    text << UserName(i) << '=' << PropertiesOf(i) << "\r\n";
  text << "[FaxHeaders]\r\n";
  for (int i = 0; i < kUsers; ++i)
    text << UserName(i) << "=Fax of user " << i << "\r\n";
  text << "[Recipients OCR Ratios]\r\n";
  for (int i = 0; i < kUsers; ++i)
    text << UserName(i) << '=' << 80 + (i * 7) % 21 << "\r\n";
  for (int i = 0; i < kUsers; ++i) {
    text << '[' << UserName(i) << "]\r\n";
    for (int j = 0; j < 3; ++j)
      text << NumberedKey("C_", j) << "=Cover" << j << ",C:\\FAX\\COVER\\" << i << '_' << j << ".CVP\r\n";
    for (int j = 0; j < 3; ++j)
      text << NumberedKey("A_", j) << "=Sheet" << j << ",C:\\FAX\\ATTACH\\" << i << '_' << j << ".DOC\r\n";
    text << "DefaultCover=Cover1\r\nB_00000=0190\r\n";
  }
  return text.str();
}

// 5000 entries spread over the four kinds of route.
std::string RoutesText() {
  std::ostringstream text;
  text << "[Routing]\r\n";
  for (int i = 0; i < 5000; ++i) {
    const auto kind = static_cast<RouteKind>(i % 4);
    text << NumberedKey(RoutePrefix(kind), i / 4) << '=' << UserName(i % kUsers) << ",value" << i << "\r\n";
  }
  return text.str();
}

// Words the OCR entries are made of. None of them is in the recognised text, so the phrases are
// all compared and all fail: a fax goes to the one user whose keyword was planted in the text.
constexpr std::array<const char *, 16> kVocabulary = {
    "INVOICE", "DEPARTMENT", "ORDER",    "ACME",     "SHIPPING", "ACCOUNTS", "PAYABLE", "RECEIVABLE",
    "CLAIM",   "POLICY",     "CONTRACT", "DELIVERY", "SUPPORT",  "REFUND",   "QUOTE",   "REMINDER"};
constexpr int kPlantedUser = 8;  // routes by keywords alone (no OCR groups)
constexpr std::string_view kPlantedKeyword = "ZEPHYRWORKS";

// 2000 OCR group and keyword entries of one to seven words, and the planted one.
std::string OcrRoutesText(std::mt19937 &random) {
  std::ostringstream text;
  text << "[Routing]\r\n";
  int groups = 0;
  int keywords = 0;
  text << NumberedKey(RoutePrefix(RouteKind::OcrKeyword), keywords++) << '=' << UserName(kPlantedUser) << ','
       << kPlantedKeyword << "\r\n";
  for (int i = 1; i < 2000; ++i) {
    const bool group = i % 2 == 0;
    const auto kind = group ? RouteKind::OcrGroup : RouteKind::OcrKeyword;
    text << NumberedKey(RoutePrefix(kind), group ? groups++ : keywords++) << '='
         << UserName(static_cast<int>(random() % kUsers)) << ',';
    const int words = 1 + static_cast<int>(random() % kMaxPhraseWords);
    for (int w = 0; w < words; ++w)
      text << (w ? " " : "") << kVocabulary[random() % kVocabulary.size()];
    text << "\r\n";
  }
  return text.str();
}

// A full page: every line with the most words kept, every word of the longest kept length, and
// the planted keyword once in the middle.
std::string RecognisedText(std::mt19937 &random) {
  std::string text;
  for (std::size_t line = 0; line < kMaxOcrLines; ++line) {
    for (std::size_t word = 0; word < kMaxOcrLineWords; ++word) {
      if (line == kMaxOcrLines / 2 && word == kMaxOcrLineWords / 2) {
        text += kPlantedKeyword;
      } else {
        for (std::size_t c = 0; c < kMaxOcrWordChars; ++c)
          text += static_cast<char>('A' + random() % 26);
      }
      text += word + 1 < kMaxOcrLineWords ? " " : "\r\n";
    }
  }
  return text;
}

// One plain parse of the database: reading the file and indexing every section and key.
double ParseTime(const Sandbox &sandbox) {
  std::size_t sections = 0;
  const double seconds = TimeOf([&] {
    const platform::IniDocument document(ReadBytes(sandbox.AdminDatabase()));
    sections = document.SectionNames().size();
  });
  Check(sections > kUsers, "the plain parse found too few sections");
  return seconds;
}

Round CountUsers(const RoundContext &context) {
  const Sandbox sandbox(context.scratch, UsersText() + RoutesText());
  Round round;
  round.ours = TimeInLibrary(context.library, sandbox, [](const tool::EntryPoints &library) {
    std::uint32_t count = 0;
    const double seconds = TimeOf([&] { library.getNumUsers(&count); });
    Check(count == static_cast<std::uint32_t>(FaxUsers()), "S_GetNumUsers counted " + std::to_string(count) +
                                                               " users, " + std::to_string(FaxUsers()) +
                                                               " expected");
    return seconds;
  });
  round.baseline = ParseTime(sandbox);
  return round;
}

Round RouteByOcr(const RoundContext &context) {
  std::mt19937 random(20030305);
  const Sandbox sandbox(context.scratch, UsersText() + OcrRoutesText(random));
  const fs::path textFile = sandbox.Scratch("host") / "page.txt";
  WriteBytes(textFile, RecognisedText(random));
  const std::string image = RandomBytes(30 * 1024, 5);
  Round round;
  round.ours = TimeInLibrary(context.library, sandbox, [&](const tool::EntryPoints &library) {
    std::vector<unsigned char> record(kReceiveTouchedSize);
    ReceiveRecordView receive(record.data());
    library.createReceiveFaxFile(record.data());
    WriteBytes(NativePath(receive.Text(receive::FaxFile)), image);
    receive.SetText(receive::RemoteId, "+49 30 0000");
    receive.SetNumber(receive::Result, kResultReceived);
    receive.SetNumber(receive::PagesReceived, 1u);
    receive.SetNumber(receive::OcrAvailable, 1u);
    receive.SetText(receive::OcrTextFile, textFile.string());
    return TimeOf([&] { library.faxReceived(record.data()); });
  });
  const std::vector<fs::path> mailed = FilesIn(sandbox.GatewayIn());
  Check(mailed.size() == 1 && ReadBytes(mailed[0]).find(UserName(kPlantedUser)) != std::string::npos,
        "the fax was not routed to the one user whose keyword is in its text alone (" +
            std::to_string(mailed.size()) + " messages mailed)");
  round.baseline = ParseTime(sandbox);
  return round;
}

}  // namespace

std::vector<Figure> AdminFigures() {
  return {
      {"P4", "S_GetNumUsers over 800 users (5000 routes)", "one parse of tqvadmin.ini", 1.5, CountUsers},
      {"P5", "S_FaxReceived routing by OCR: 800 users, 2000 entries, 23 lines", "one parse of tqvadmin.ini",
       5, RouteByOcr},
  };
}

}  // namespace tqv::bench
