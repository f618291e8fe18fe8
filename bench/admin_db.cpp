// Times walks of a large administration database against one plain parse of the same file, to
// show that the profile cache makes a walk of many lookups cost about one parse, not one each.
// Works in a fresh temporary directory, removed at the end.
#include <stdlib.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "config/admin_database.h"
#include "config/numbered_list.h"
#include "config/routing_entries.h"
#include "config/saved_files.h"
#include "config/user_list.h"
#include "config/user_properties.h"
#include "platform/ini_document.h"
#include "platform/platform_state.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Options {
  int users = 800;
  int routes = 5000;
  int rounds = 20;
};

void PrintUsage(const char *program) {
  std::printf(
      "usage: %s [--users N] [--routes N] [--rounds N]\n"
      "Builds tqvadmin.ini with N users (properties, saved files, blocked numbers) and N routing\n"
      "entries spread over the four route kinds in a temporary directory, then times the user walk\n"
      "that counts fax users, a walk of every route kind, an AddCsidRoute that finds its route and an\n"
      "AddSavedFile that moves a list down, each against one plain parse of the file.\n"
      "Defaults: --users 800 --routes 5000 --rounds 20.\n",
      program);
}

bool ParseOptions(int argc, char **argv, Options &options) {
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    int *target = argument == "--users"    ? &options.users
                  : argument == "--routes" ? &options.routes
                  : argument == "--rounds" ? &options.rounds
                                           : nullptr;
    if (target == nullptr || i + 1 >= argc) return false;
    *target = std::atoi(argv[++i]);
    if (*target < 1) return false;
  }
  return true;
}

std::string UserName(int number) {
  return "user" + std::to_string(number) + "@example.com";
}

// Written in one go: going through the write primitive would rewrite the file once per key.
std::string DatabaseText(const Options &options) {
  std::ostringstream text;
  text << "[Recipient List]\r\n";
  for (int i = 0; i < options.users; ++i)
    text << UserName(i) << "=User Number " << i << "\r\n";
  text << "[Recipients Properties]\r\n";
  for (int i = 0; i < options.users; ++i)
    text << UserName(i) << '=' << (i % 3 == 0 ? tqv::kDefaultUserProperties : tqv::kDefaultUserProperties | 1)
         << "\r\n";
  text << "[FaxHeaders]\r\n";
  for (int i = 0; i < options.users; ++i)
    text << UserName(i) << "=Fax of user " << i << "\r\n";
  for (int i = 0; i < options.users; ++i) {
    text << '[' << UserName(i) << "]\r\n";
    text
        << "C_00000=COVERPGE,C:\\FAX\\COVER\\DEFAULT.CVP\r\nT_00000=TEMPLATE,C:\\FAX\\COVER\\DEFAULT.TPL\r\n";
    for (int j = 1; j < 4; ++j)
      text << tqv::NumberedKey("C_", j) << "=Cover" << j << ",C:\\FAX\\ATTACH\\" << i << '_' << j
           << ".CVP\r\n";
    for (int j = 0; j < 3; ++j)
      text << tqv::NumberedKey("A_", j) << "=Sheet" << j << ",C:\\FAX\\ATTACH\\" << i << '_' << j
           << ".DOC\r\n";
    text << "DefaultCover=Cover1\r\nB_00000=0190\r\n";
  }
  text << "[Routing]\r\n";
  for (int i = 0; i < options.routes; ++i) {
    const auto kind = static_cast<tqv::RouteKind>(i % 4);
    text << tqv::NumberedKey(tqv::RoutePrefix(kind), i / 4) << '=' << UserName(i % options.users) << ",value"
         << i << "\r\n";
  }
  return text.str();
}

double MicrosecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

int CountFaxUsers() {
  int count = 0;
  for (std::optional<std::string> user = tqv::FirstUser(); user; user = tqv::NextUser()) {
    if (tqv::HasProperty(tqv::GetUserProperties(*user), tqv::UserProperty::SendFaxes)) ++count;
  }
  tqv::EndUsers();
  return count;
}

int WalkAllRoutes() {
  int count = 0;
  tqv::RouteEntry entry;
  for (int kind = 0; kind < 4; ++kind) {
    for (int result = tqv::FirstRoute(static_cast<tqv::RouteKind>(kind), 255, 255, entry);
         result == tqv::kListEntry; result = tqv::NextRoute(255, 255, entry))
      ++count;
  }
  tqv::EndRoutes();
  return count;
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
  if (!ParseOptions(argc, argv, options)) {
    PrintUsage(argv[0]);
    return 2;
  }

  std::string directory = (std::filesystem::temp_directory_path() / "tqvbench.XXXXXX").string();
  if (mkdtemp(directory.data()) == nullptr) {
    std::perror("mkdtemp");
    return 1;
  }
  setenv("TQVSPOOL_WINDIR", directory.c_str(), 1);
  tqv::platform::ResetPlatformStateForTesting();

  std::printf("building a database of %d users and %d routing entries in %s ...\n", options.users,
              options.routes, directory.c_str());
  const std::string bytes = DatabaseText(options);
  std::ofstream(directory + "/tqvadmin.ini", std::ios::binary) << bytes;
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

  std::printf("timing the user walk (first one with an empty cache) ...\n");
  start = Clock::now();
  const int faxUsers = CountFaxUsers();
  const double coldUserWalk = MicrosecondsSince(start);
  start = Clock::now();
  for (int round = 0; round < options.rounds; ++round)
    CountFaxUsers();
  const double userWalk = MicrosecondsSince(start) / options.rounds;

  std::printf("timing the route walk ...\n");
  start = Clock::now();
  int routes = 0;
  for (int round = 0; round < options.rounds; ++round)
    routes = WalkAllRoutes();
  const double routeWalk = MicrosecondsSince(start) / options.rounds;

  // Writes rewrite the whole file, so they are timed over fewer rounds.
  const int writeRounds = options.rounds < 5 ? options.rounds : 5;
  std::printf("timing AddCsidRoute of a route already present ...\n");
  const std::string lastCsid = "value" + std::to_string(((options.routes - 1) / 4) * 4 + 1);
  start = Clock::now();
  for (int round = 0; round < options.rounds; ++round)
    tqv::AddCsidRoute(UserName(((options.routes - 1) / 4 * 4 + 1) % options.users), lastCsid);
  const double csidPresent = MicrosecondsSince(start) / options.rounds;

  std::printf("timing AddSavedFile of new names (the list moves down, one write per entry) ...\n");
  start = Clock::now();
  for (int round = 0; round < writeRounds; ++round)
    tqv::AddSavedFile(tqv::SavedFileKind::Coverpage, UserName(0), "New" + std::to_string(round),
                      "C:\\NEW.CVP");
  const double addSaved = MicrosecondsSince(start) / writeRounds;

  std::printf("\nsections %zu, fax users %d of %d, routes walked %d\n", sections / options.rounds, faxUsers,
              options.users, routes);
  std::printf("%-34s %12s %14s %10s\n", "", "total [us]", "per op [us]", "parses");
  std::printf("%-34s %12.1f %14s %10.2f\n", "plain parse of the file", parse, "", 1.0);
  std::printf("%-34s %12.1f %14.3f %10.2f\n", "user walk, empty cache", coldUserWalk,
              coldUserWalk / options.users, coldUserWalk / parse);
  std::printf("%-34s %12.1f %14.3f %10.2f\n", "user walk, cached", userWalk, userWalk / options.users,
              userWalk / parse);
  std::printf("%-34s %12.1f %14.3f %10.2f\n", "route walk, all four kinds", routeWalk,
              routes > 0 ? routeWalk / routes : 0.0, routeWalk / parse);
  std::printf("%-34s %12.1f %14s %10.2f\n", "AddCsidRoute, route present", csidPresent, "",
              csidPresent / parse);
  std::printf("%-34s %12.1f %14s %10.2f\n", "AddSavedFile, list moved down", addSaved, "", addSaved / parse);

  std::error_code ignored;
  std::filesystem::remove_all(directory, ignored);
  return 0;
}
