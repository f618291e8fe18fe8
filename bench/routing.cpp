// Times the routing of one received fax over a large administration database and a full page of
// recognised text, against one plain parse of the same tqvadmin.ini: routing reads through the
// profile cache, so it should cost a few parses at most, not one per entry or per user.
// Works in a fresh temporary directory, removed at the end.
#include <stdlib.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

#include "common/receive_record.h"
#include "config/admin_database.h"
#include "config/numbered_list.h"
#include "config/routing_entries.h"
#include "config/user_properties.h"
#include "incoming/inbound_routing.h"
#include "incoming/ocr_matching.h"
#include "incoming/recipient_list.h"
#include "platform/ini_document.h"
#include "platform/platform_state.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Options {
  int users = 800;
  int entries = 2000;
  int rounds = 20;
};

void PrintUsage(const char *program) {
  std::printf(
      "usage: %s [--users N] [--entries N] [--rounds N]\n"
      "Builds tqvadmin.ini with N users (a third with OCR group routing, ratios from 80 to 100) and\n"
      "N OCR group and keyword entries of one to seven words, and a recognised-text file of %zu lines\n"
      "of %zu words of %zu characters, in a temporary directory; then times the routing of one fax\n"
      "(first with an empty profile cache, then cached) against one plain parse of the database.\n"
      "Defaults: --users 800 --entries 2000 --rounds 20.\n",
      program, tqv::kMaxOcrLines, tqv::kMaxOcrLineWords, tqv::kMaxOcrWordChars);
}

// False, with the reason, for anything but known options with positive whole numbers.
bool ParseOptions(int argc, char **argv, Options &options, std::string &reason) {
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    int *target = argument == "--users"     ? &options.users
                  : argument == "--entries" ? &options.entries
                  : argument == "--rounds"  ? &options.rounds
                                            : nullptr;
    if (target == nullptr) {
      reason = "unknown argument '" + argument + "'";
      return false;
    }
    if (i + 1 >= argc) {
      reason = argument + " needs a number";
      return false;
    }
    char *end = nullptr;
    const long value = std::strtol(argv[++i], &end, 10);
    if (*argv[i] == '\0' || *end != '\0' || value < 1 || value > 1000000) {
      reason = argument + " needs a whole number from 1 to 1000000, not '" + argv[i] + "'";
      return false;
    }
    *target = static_cast<int>(value);
  }
  return true;
}

std::string UserName(int number) {
  return "user" + std::to_string(number) + "@example.com";
}

// Words the entries are made of; the recognised text holds some of them among long noise.
constexpr std::array<const char *, 16> kVocabulary = {
    "INVOICE", "DEPARTMENT", "ORDER",    "ACME",     "SHIPPING", "ACCOUNTS", "PAYABLE", "RECEIVABLE",
    "CLAIM",   "POLICY",     "CONTRACT", "DELIVERY", "SUPPORT",  "REFUND",   "QUOTE",   "REMINDER"};

std::string Phrase(std::mt19937 &random) {
  const int words = 1 + static_cast<int>(random() % tqv::kMaxPhraseWords);
  std::string phrase;
  for (int i = 0; i < words; ++i)
    phrase += std::string(i ? " " : "") + kVocabulary[random() % kVocabulary.size()];
  return phrase;
}

// Written in one go: going through the write primitive would rewrite the file once per key.
std::string DatabaseText(const Options &options, std::mt19937 &random) {
  std::ostringstream text;
  text << "[Recipient List]\r\n";
  for (int i = 0; i < options.users; ++i)
    text << UserName(i) << "=User Number " << i << "\r\n";
  text << "[Recipients Properties]\r\n";
  for (int i = 0; i < options.users; ++i) {
    std::int32_t properties = tqv::kDefaultUserProperties | 1;
    if (i % 3 == 0) properties |= static_cast<std::int32_t>(tqv::UserProperty::OcrGroupRouting);
    if (i % 50 == 0) properties |= static_cast<std::int32_t>(tqv::UserProperty::ReceiveUnrouted);
    text << UserName(i) << '=' << properties << "\r\n";
  }
  text << "[Recipients OCR Ratios]\r\n";
  for (int i = 0; i < options.users; ++i)
    text << UserName(i) << '=' << 80 + (i * 7) % 21 << "\r\n";
  text << "[Routing]\r\n";
  int groups = 0;
  int keywords = 0;
  for (int i = 0; i < options.entries; ++i) {
    const bool group = i % 2 == 0;
    const auto kind = group ? tqv::RouteKind::OcrGroup : tqv::RouteKind::OcrKeyword;
    text << tqv::NumberedKey(tqv::RoutePrefix(kind), group ? groups++ : keywords++) << '='
         << UserName(static_cast<int>(random() % options.users)) << ',' << Phrase(random) << "\r\n";
  }
  return text.str();
}

// Full lines: every word of the longest kept length, with a vocabulary word now and then.
std::string RecognisedText(std::mt19937 &random) {
  std::string text;
  for (std::size_t line = 0; line < tqv::kMaxOcrLines; ++line) {
    for (std::size_t word = 0; word < tqv::kMaxOcrLineWords; ++word) {
      if (word % 5 == 4) {
        text += kVocabulary[random() % kVocabulary.size()];
      } else {
        for (std::size_t c = 0; c < tqv::kMaxOcrWordChars; ++c)
          text += static_cast<char>('A' + random() % 26);
      }
      text += word + 1 < tqv::kMaxOcrLineWords ? " " : "\r\n";
    }
  }
  return text;
}

double MicrosecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

std::size_t RouteOneFax(const std::string &textFile) {
  std::array<unsigned char, tqv::kReceiveTouchedSize> record{};
  tqv::ReceiveRecordView receive(record.data());
  receive.SetText(tqv::receive::RemoteId, "+49 89 5555");
  receive.SetText(tqv::receive::DtmfDigits, "42");
  receive.SetNumber(tqv::receive::OcrAvailable, 1u);
  receive.SetText(tqv::receive::OcrTextFile, textFile);
  tqv::RecipientList list;
  tqv::Route(receive, list);
  return list.Count();
}

}  // namespace

int main(int argc, char **argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
      PrintUsage(argv[0]);
      return 0;
    }
  }
  std::string reason;
  if (!ParseOptions(argc, argv, options, reason)) {
    std::fprintf(stderr, "%s: %s (see --help)\n", argv[0], reason.c_str());
    return 2;
  }

  std::string directory = (std::filesystem::temp_directory_path() / "tqvbench.XXXXXX").string();
  if (mkdtemp(directory.data()) == nullptr) {
    std::perror("mkdtemp");
    return 1;
  }
  setenv("TQVSPOOL_WINDIR", directory.c_str(), 1);
  tqv::platform::ResetPlatformStateForTesting();

  std::printf("building a database of %d users and %d OCR entries in %s ...\n", options.users,
              options.entries, directory.c_str());
  std::mt19937 random(20030305);
  const std::string bytes = DatabaseText(options, random);
  std::ofstream(directory + "/tqvadmin.ini", std::ios::binary) << bytes;
  const std::string textFile = directory + "/ocr.txt";
  std::ofstream(textFile, std::ios::binary) << RecognisedText(random);
  tqv::InitAdminDatabase(directory, 10, 10, 10);
  std::printf("  %zu bytes\n", bytes.size());

  std::printf("timing %d plain parses ...\n", options.rounds);
  auto start = Clock::now();
  std::size_t sections = 0;
  for (int round = 0; round < options.rounds; ++round) {
    const tqv::platform::IniDocument document(bytes);
    sections += document.SectionNames().size();
  }
  const double parse = MicrosecondsSince(start) / options.rounds;

  std::printf("timing the routing of one fax (first one with an empty cache) ...\n");
  start = Clock::now();
  const std::size_t routed = RouteOneFax(textFile);
  const double coldRoute = MicrosecondsSince(start);
  start = Clock::now();
  for (int round = 0; round < options.rounds; ++round)
    RouteOneFax(textFile);
  const double route = MicrosecondsSince(start) / options.rounds;

  start = Clock::now();
  for (int round = 0; round < options.rounds; ++round)
    tqv::ReadOcrTextLines(textFile);
  const double readText = MicrosecondsSince(start) / options.rounds;

  std::printf("\nsections %zu, users routed %zu of %d\n", sections / options.rounds, routed, options.users);
  std::printf("%-34s %12s %10s\n", "", "time [us]", "parses");
  std::printf("%-34s %12.1f %10.2f\n", "plain parse of tqvadmin.ini", parse, 1.0);
  std::printf("%-34s %12.1f %10.2f\n", "route one fax, empty cache", coldRoute, coldRoute / parse);
  std::printf("%-34s %12.1f %10.2f\n", "route one fax, cached", route, route / parse);
  std::printf("%-34s %12.1f %10.2f\n", "  of which reading the text", readText, readText / parse);

  std::error_code ignored;
  std::filesystem::remove_all(directory, ignored);
  return 0;
}
