// The subcommands of `tqv`. Each registers its options on the application; when it is chosen, it
// leaves its work as an action that main runs after parsing, so parse errors never half-run a command.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>

namespace tqv::tool {

// Exit codes shared by every command.
inline constexpr int kExitSuccess = 0;
inline constexpr int kExitFailure = 1;
// The library cannot be loaded or lacks an entry point.
inline constexpr int kExitNoLibrary = 2;
// Bad command line (EX_USAGE).
inline constexpr int kExitUsage = 64;

using CommandAction = std::function<int()>;

void AddHostCommand(CLI::App &app, CommandAction &action);
void AddQueueCommand(CLI::App &app, CommandAction &action);
void AddAdminCommand(CLI::App &app, CommandAction &action);
void AddCheckCommand(CLI::App &app, CommandAction &action);
void AddLogCommand(CLI::App &app, CommandAction &action);
void AddTrafficCommand(CLI::App &app, CommandAction &action);
#ifdef TQV_MAIL_BRIDGE
void AddMailCommand(CLI::App &app, CommandAction &action);
#endif

}  // namespace tqv::tool
