// The bash completion script: one case per command path ("tqv/log/send") with the words that may
// follow there. Nothing fails; an app without subcommands gives a script that completes options.
#include "tqv/completion.h"

#include <iostream>
#include <set>

namespace tqv::tool {

namespace {

struct CommandWords {
  std::string path;  // "tqv/log/send"
  std::string words;
  bool takesFiles = false;
};

void AppendWord(std::string &words, const std::string &word) {
  if (!words.empty()) words += ' ';
  words += word;
}

void Collect(const CLI::App &app, const std::string &path, std::vector<CommandWords> &commands,
             std::set<std::string> &valueOptions) {
  CommandWords command{path, {}};
  const auto all = [](const CLI::App *) { return true; };
  for (const CLI::App *sub : app.get_subcommands(all))
    AppendWord(command.words, sub->get_name());
  for (const CLI::Option *option : app.get_options()) {
    if (option->get_positional()) {
      command.takesFiles = true;
      continue;
    }
    for (const std::string &name : option->get_lnames()) {
      AppendWord(command.words, "--" + name);
      if (option->get_expected_min() > 0) valueOptions.insert("--" + name);
    }
    for (const std::string &name : option->get_snames()) {
      AppendWord(command.words, "-" + name);
      if (option->get_expected_min() > 0) valueOptions.insert("-" + name);
    }
  }
  commands.push_back(command);
  for (const CLI::App *sub : app.get_subcommands(all))
    Collect(*sub, path + "/" + sub->get_name(), commands, valueOptions);
}

std::string Joined(const std::set<std::string> &words, std::string_view separator) {
  std::string text;
  for (const std::string &word : words)
    text += (text.empty() ? "" : std::string(separator)) + word;
  return text;
}

}  // namespace

std::string BashCompletion(const CLI::App &app) {
  const std::string name = app.get_name().empty() ? "tqv" : app.get_name();
  std::vector<CommandWords> commands;
  std::set<std::string> valueOptions;
  Collect(app, name, commands, valueOptions);

  std::string paths;
  for (std::size_t i = 1; i < commands.size(); ++i)
    paths += (paths.empty() ? "" : "|") + commands[i].path;

  std::string script = "# bash completion for " + name + ", generated from its command definitions\n";
  script += "_" + name + "() {\n";
  script += "  local cur=\"${COMP_WORDS[COMP_CWORD]}\" prev=\"${COMP_WORDS[COMP_CWORD-1]}\"\n";
  script += "  local path=" + name + " i words=\"\" files=0\n";
  script += "  for ((i = 1; i < COMP_CWORD; i++)); do\n";
  if (!paths.empty())
    script +=
        "    case \"$path/${COMP_WORDS[i]}\" in " + paths + ") path=\"$path/${COMP_WORDS[i]}\" ;; esac\n";
  script += "  done\n";
  if (!valueOptions.empty()) {
    script += "  case \"$prev\" in\n    " + Joined(valueOptions, "|") + ")\n";
    script += "      COMPREPLY=($(compgen -f -- \"$cur\"))\n      return ;;\n  esac\n";
  }
  script += "  case \"$path\" in\n";
  for (const CommandWords &command : commands)
    script += "    " + command.path + ") words=\"" + command.words +
              "\" files=" + (command.takesFiles ? "1" : "0") + " ;;\n";
  script += "  esac\n";
  script += "  COMPREPLY=($(compgen -W \"$words\" -- \"$cur\"))\n";
  script += "  if [[ $files == 1 && $cur != -* ]]; then COMPREPLY+=($(compgen -f -- \"$cur\")); fi\n";
  script += "}\ncomplete -F _" + name + " " + name + "\n";
  return script;
}

void AddCompletionCommand(CLI::App &app, CommandAction &action) {
  CLI::App *command = app.add_subcommand("completion", "Print a shell completion script for tqv.");
  CLI::App *bash = command->add_subcommand("bash",
                                           "Print the bash completion script (source it, or install it as "
                                           "/usr/share/bash-completion/completions/tqv).");
  command->require_subcommand(1);
  bash->callback([&app, &action] {
    action = [&app] {
      std::cout << BashCompletion(app) << std::flush;
      return kExitSuccess;
    };
  });
}

}  // namespace tqv::tool
