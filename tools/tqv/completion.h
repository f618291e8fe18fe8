// Shell completion for `tqv`, generated from the command definitions themselves, so a new command
// or option completes as soon as it is registered.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

#include "tqv/commands.h"

namespace tqv::tool {

// A bash script that completes the subcommands and options of `app`, and file names after options
// that take a value and where a command takes positional arguments.
std::string BashCompletion(const CLI::App &app);

// `tqv completion bash`: prints BashCompletion of the whole command line as main built it.
void AddCompletionCommand(CLI::App &app, CommandAction &action);

}  // namespace tqv::tool
