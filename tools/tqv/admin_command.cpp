// `tqv admin`: placeholder until the command lands.
#include "tqv/commands.h"

namespace tqv::tool {

void AddAdminCommand(CLI::App &app, CommandAction &action) {
  CLI::App *command =
      app.add_subcommand("admin", "Maintain users, routing entries and blocked numbers in tqvadmin.ini.");
  command->callback([&action] { action = [] { return kExitFailure; }; });
}

}  // namespace tqv::tool
