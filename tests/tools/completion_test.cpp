// The bash completion follows the command definitions: nested commands, their options, and file
// names only where a value or a positional argument is expected.
#include <gtest/gtest.h>

#include <string>

#include "tqv/completion.h"

namespace tqv::tool {
namespace {

TEST(BashCompletion, OffersEachCommandsWordsAndFilesOnlyWhereValuesGo) {
  CLI::App app{"test", "tqv"};
  std::string text;
  bool flag = false;
  CLI::App *log = app.add_subcommand("log", "");
  CLI::App *send = log->add_subcommand("send", "");
  send->add_option("--since", text, "");
  send->add_flag("--json", flag, "");
  app.add_subcommand("queue", "")->add_option("DIR", text, "");

  const std::string script = BashCompletion(app);
  for (const char *expected : {
           "case \"$path/${COMP_WORDS[i]}\" in tqv/log|tqv/log/send|tqv/queue) ",
           "    --since)\n",
           "    tqv) words=\"log queue --help -h\" files=0 ;;\n",
           "    tqv/log/send) words=\"--help -h --since --json\" files=0 ;;\n",
           "    tqv/queue) words=\"--help -h\" files=1 ;;\n",
           "complete -F _tqv tqv\n",
       })
    EXPECT_NE(script.find(expected), std::string::npos) << expected << "\n" << script;
}

}  // namespace
}  // namespace tqv::tool
