// `tqv queue`: lists the job files of a pending directory, like mailq. Fails with one line when the
// directory does not exist; damaged job files are listed, never a reason to fail.
#include <iostream>
#include <memory>
#include <string>

#include "common/path_helpers.h"
#include "tqv/commands.h"
#include "tqv/queue/queue_listing.h"

namespace tqv::tool {

namespace {

struct QueueOptions {
  std::string directory;
  std::string gatewayOut;
  bool json = false;
};

int RunQueue(const QueueOptions &options) {
  std::string directory = options.directory;
  if (directory.empty()) {
    directory = options.gatewayOut;
    AppendBackslash(directory);
    directory += "PENDING";
  }
  const std::optional<std::vector<QueueEntry>> entries = ListQueue(directory);
  if (!entries) {
    std::cerr << "tqv queue: no such directory: " << directory << "\n";
    return kExitFailure;
  }
  std::cout << (options.json ? RenderQueueJson(*entries) : RenderQueueText(*entries)) << std::flush;
  return kExitSuccess;
}

}  // namespace

void AddQueueCommand(CLI::App &app, CommandAction &action) {
  auto options = std::make_shared<QueueOptions>();
  CLI::App *queue = app.add_subcommand("queue", "List the job files of the pending directory.");
  CLI::Option *directory =
      queue->add_option("DIR", options->directory, "The pending directory (Windows or native form).");
  queue
      ->add_option("--gateway-out", options->gatewayOut,
                   "The gateway-out directory; lists its PENDING directory.")
      ->excludes(directory);
  queue->add_flag("--json", options->json, "Print a JSON array of objects instead of the listing.");
  queue->callback([options, &action] {
    if (options->directory.empty() && options->gatewayOut.empty())
      throw CLI::RequiredError("DIR or --gateway-out");
    action = [options] { return RunQueue(*options); };
  });
}

}  // namespace tqv::tool
