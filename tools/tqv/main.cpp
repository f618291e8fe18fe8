// Entry of the `tqv` command: parses the command line and runs the chosen subcommand. Every bad
// command line ends with one line on stderr and exit code 64.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tqv/commands.h"
#include "tqv/completion.h"

namespace {

std::string OneLineFailure(const CLI::App *, const CLI::Error &error) {
  std::string reason = error.what();
  std::replace(reason.begin(), reason.end(), '\n', ' ');
  return "tqv: " + reason + " (see --help)\n";
}

// An MTA expands "--sasl-user=${sasl_username}" to "--sasl-user=" when there is no login, and
// CLI11 would then take the next argument as the value: the empty value is made a word of its own.
std::vector<std::string> WithEmptyValuesSplit(int argc, char **argv) {
  std::vector<std::string> words;
  bool options = true;
  for (int i = 0; i < argc; ++i) {
    std::string word = argv[i];
    if (word == "--") options = false;
    if (options && word.size() > 3 && word.starts_with("--") && word.find('=') == word.size() - 1) {
      word.pop_back();
      words.push_back(word);
      words.emplace_back();
    } else {
      words.push_back(std::move(word));
    }
  }
  return words;
}

}  // namespace

int main(int argc, char **argv) {
  CLI::App app{"Tools for the tqvspool gateway file converter.", "tqv"};
  app.footer("Exit status: 0 success, 1 failure, 2 library cannot be loaded, 64 bad command line.");
  app.require_subcommand(1);
  app.failure_message(OneLineFailure);

  tqv::tool::CommandAction action;
  tqv::tool::AddHostCommand(app, action);
  tqv::tool::AddQueueCommand(app, action);
  tqv::tool::AddAdminCommand(app, action);
  tqv::tool::AddCheckCommand(app, action);
  tqv::tool::AddLogCommand(app, action);
  tqv::tool::AddTrafficCommand(app, action);
#ifdef TQV_MAIL_BRIDGE
  tqv::tool::AddMailCommand(app, action);
#endif
  tqv::tool::AddCompletionCommand(app, action);

  std::vector<std::string> words = WithEmptyValuesSplit(argc, argv);
  std::vector<char *> wordPointers;
  for (std::string &word : words)
    wordPointers.push_back(word.data());
  try {
    app.parse(static_cast<int>(wordPointers.size()), wordPointers.data());
  } catch (const CLI::ParseError &error) {
    return app.exit(error) == 0 ? tqv::tool::kExitSuccess : tqv::tool::kExitUsage;
  }
  return action ? action() : tqv::tool::kExitSuccess;
}
