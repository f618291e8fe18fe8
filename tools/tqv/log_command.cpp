// `tqv log`: placeholder until the command lands.
#include "tqv/commands.h"

namespace tqv::tool {

void AddLogCommand(CLI::App &app, CommandAction &action) {
  CLI::App *command = app.add_subcommand("log", "Print the send or receive log as a table.");
  command->callback([&action] { action = [] { return kExitFailure; }; });
}

}  // namespace tqv::tool
