// `tqv log send|receive`: the send or receive log of the product directory as a table or JSON,
// with totals. Fails with one line when the log cannot be read; unreadable lines are counted on
// stderr and left out.
#include <iostream>
#include <memory>
#include <string>

#include "common/path_helpers.h"
#include "config/settings_files.h"
#include "reports/receive_log.h"
#include "reports/send_log.h"
#include "tqv/commands.h"
#include "tqv/log/log_files.h"

namespace tqv::tool {

namespace {

struct LogOptions {
  std::string directory;
  std::string since;
  bool json = false;
};

int RunLog(LogKind kind, const LogOptions &options) {
  std::string directory = options.directory.empty() ? GetProductDirectory() : options.directory;
  if (directory.empty()) {
    std::cerr << "tqv log: no product directory: [Corvanta] Directory is not set; pass --dir\n";
    return kExitFailure;
  }
  const std::string path =
      AppendBackslash(directory) + std::string(kind == LogKind::Send ? kSendLogName : kReceiveLogName);
  const std::optional<LogContents> contents = ReadLogFile(kind, path);
  if (!contents) {
    std::cerr << "tqv log: cannot read " << path << "\n";
    return kExitFailure;
  }
  std::vector<LogLine> lines = contents->lines;
  if (!options.since.empty()) lines = LinesSince(lines, *ParseIsoDay(options.since));
  std::cout << (options.json ? RenderLogJson(kind, lines) : RenderLogTable(kind, lines)) << std::flush;
  if (contents->unreadable > 0)
    std::cerr << "tqv log: " << contents->unreadable << " line(s) of " << path << " could not be read\n";
  return kExitSuccess;
}

void AddLogKind(CLI::App &log, LogKind kind, CommandAction &action) {
  auto options = std::make_shared<LogOptions>();
  CLI::App *command = kind == LogKind::Send
                          ? log.add_subcommand("send", "Print sendlog.txt: one line per sent fax.")
                          : log.add_subcommand("receive", "Print rcvlog.txt: one line per received fax.");
  command->add_option(
      "--dir", options->directory,
      "The product directory that holds the log (default: [Corvanta] Directory of the machine file).");
  command
      ->add_option("--since", options->since,
                   "Only faxes logged on or after this day (YYYY-MM-DD); dates are read by the regional "
                   "short-date format.")
      ->check([](const std::string &value) {
        return ParseIsoDay(value) ? std::string() : "not a day YYYY-MM-DD: " + value;
      });
  command->add_flag("--json", options->json, "Print JSON: every column of every line, and the totals.");
  command->callback(
      [kind, options, &action] { action = [kind, options] { return RunLog(kind, *options); }; });
}

}  // namespace

void AddLogCommand(CLI::App &app, CommandAction &action) {
  CLI::App *command = app.add_subcommand("log", "Print the send or receive log as a table, with totals.");
  command->require_subcommand(1);
  AddLogKind(*command, LogKind::Send, action);
  AddLogKind(*command, LogKind::Receive, action);
}

}  // namespace tqv::tool
