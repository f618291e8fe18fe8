// `tqv check`: validates the installation the Windows directory points to and prints one line per
// finding. Exit 1 when any finding is an error, so scripts can run it before starting the service.
#include <iostream>
#include <memory>

#include "tqv/check/check_installation.h"
#include "tqv/commands.h"

namespace tqv::tool {

namespace {

struct CheckOptions {
  bool json = false;
  bool verbose = false;
};

int RunCheck(const CheckOptions &options) {
  const CheckReport report = CheckInstallation();
  std::cout << (options.json ? RenderCheckJson(report) : RenderCheckText(report, options.verbose))
            << std::flush;
  return report.HasError() ? kExitFailure : kExitSuccess;
}

}  // namespace

void AddCheckCommand(CLI::App &app, CommandAction &action) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App *command = app.add_subcommand("check", "Check an installation the way the library will use it.");
  command->footer(
      "Reads the machine file in the Windows directory (TQVSPOOL_WINDIR on POSIX) and everything it leads "
      "to; "
      "writes nothing. Exit status: 0 no error found, 1 an error found, 64 bad command line.");
  command->add_flag("--json", options->json, "Print a JSON array of findings.");
  command->add_flag("-v,--verbose", options->verbose,
                    "Also list every directory start-up checks, with its file system.");
  command->callback([options, &action] { action = [options] { return RunCheck(*options); }; });
}

}  // namespace tqv::tool
