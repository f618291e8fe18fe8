// `tqv check`: placeholder until the command lands.
#include "tqv/commands.h"

namespace tqv::tool {

void AddCheckCommand(CLI::App &app, CommandAction &action) {
  CLI::App *command = app.add_subcommand("check", "Check an installation the way the library will use it.");
  command->callback([&action] { action = [] { return kExitFailure; }; });
}

}  // namespace tqv::tool
