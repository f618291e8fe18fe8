// `tqv traffic`: placeholder until the command lands.
#include "tqv/commands.h"

namespace tqv::tool {

void AddTrafficCommand(CLI::App &app, CommandAction &action) {
  CLI::App *command = app.add_subcommand("traffic", "Generate mixed traffic into an installation.");
  command->callback([&action] { action = [] { return kExitFailure; }; });
}

}  // namespace tqv::tool
