// `tqv admin`: users, routing entries and blocked numbers in tqvadmin.ini, written through the
// library's own database code so the file stays readable by the library and by the administration
// program. Bad arguments end with exit code 64 before anything is read; a missing product
// directory, an unknown user or a file that cannot be written with 1.
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "config/admin_database.h"
#include "config/settings_files.h"
#include "platform/file_system.h"
#include "tqv/admin/admin_properties.h"
#include "tqv/admin/admin_routes.h"
#include "tqv/admin/admin_text.h"
#include "tqv/admin/admin_users.h"
#include "tqv/commands.h"

namespace tqv::tool {

namespace {

struct AdminOptions {
  std::string productDirectory;
  bool json = false;
  bool keepFiles = false;
  std::string user;
  std::string kind;
  std::string value;
  std::optional<std::string> kindFilter;
  std::optional<std::string> userFilter;
  UserChanges changes;
};

using Options = std::shared_ptr<AdminOptions>;

constexpr const char *kDatabaseFooter =
    "The database is tqvadmin.ini in the product directory: the one given with --product-dir, or else "
    "the one the library uses, [Corvanta] Directory of TQVMSERV.INI in the Windows directory "
    "(TQVSPOOL_WINDIR on POSIX).";

// Points the database code at tqvadmin.ini of the product directory. False, with the reason said,
// when there is no such directory.
bool OpenDatabase(const AdminOptions &options) {
  std::string directory = options.productDirectory.empty() ? GetProductDirectory() : options.productDirectory;
  if (directory.empty()) {
    std::cerr << "tqv admin: no product directory: TQVMSERV.INI names none; give --product-dir\n";
    return false;
  }
  std::string probe = directory;
  while (probe.size() > 1 && (probe.back() == '\\' || probe.back() == '/'))
    probe.pop_back();
  const auto info = platform::GetEntryInfo(probe);
  if (!info || !info->isDirectory) {
    std::cerr << "tqv admin: no such product directory: " << directory << "\n";
    return false;
  }
  InitAdminDatabase(directory, kInitialSavedFileLimit, kInitialSavedFileLimit, kInitialSavedFileLimit);
  if (AdminDatabaseFile().empty()) {
    std::cerr << "tqv admin: the product directory is too long for tqvadmin.ini: " << directory << "\n";
    return false;
  }
  return true;
}

// Runs the command on the opened database once parsing is done.
void SetAction(CommandAction &action, const Options &options, std::function<int(AdminOptions &)> run) {
  action = [options, run] { return OpenDatabase(*options) ? run(*options) : kExitFailure; };
}

// An argument in the database's code page; refused with exit code 64 when it cannot be held.
std::string InDatabaseText(const std::string &argument, const std::string &what) {
  const std::optional<std::string> text = DatabaseText(argument);
  if (!text) throw CLI::ValidationError(what, "a character Windows-1252 cannot hold");
  return *text;
}

std::string CheckedUserName(const std::string &argument) {
  std::string user = InDatabaseText(argument, "USER");
  if (const std::string problem = UserNameProblem(user); !problem.empty())
    throw CLI::ValidationError("USER", problem);
  return user;
}

RouteKind CheckedRouteKind(const std::string &text) {
  const std::optional<RouteKind> kind = ParseRouteKind(text);
  if (!kind)
    throw CLI::ValidationError("KIND", "one of dtmf, csid, ocr-group, ocr-keyword, not '" + text + "'");
  return *kind;
}

CLI::App *Subcommand(CLI::App &parent, const std::string &name, const std::string &description) {
  CLI::App *command = parent.add_subcommand(name, description);
  // --product-dir may also follow the subcommand.
  command->fallthrough();
  return command;
}

void AddChangeOptions(CLI::App &command, AdminOptions &options) {
  UserChanges &changes = options.changes;
  command.add_option("USER", options.user, "The user name: the sender address the mail gateway gives.")
      ->required();
  command.add_option("--full-name", changes.fullName, "Full name (at most 94 characters).");
  command.add_option(
      "--props", changes.properties,
      "Properties as flag names: 'SendFaxes,HighResolution' sets exactly these named ones, "
      "'+BlockNumbers' or '-HighResolution' switches one, a number sets the whole word. Names: " +
          AllPropertyNames() + ".");
  command.add_option("--header", changes.faxHeader, "Fax header line (at most 46 characters; empty: none).");
  command.add_option("--voicemail", changes.voicemailBox, "Voicemail box, up to 4 digits (empty: none).");
  command.add_option("--voicemail-text", changes.voicemailText, "Text kept with the voicemail box.");
  command.add_option("--cover", changes.coverFile,
                     "File of the installation's cover page COVERPGE (entry 0).");
  command.add_option(
      "--template", changes.templateFile,
      "File of the installation's template TEMPLATE (entry 0); it becomes the default template "
      "when the user has none, as a message with text needs one.");
  command.add_option("--default-cover", changes.defaultCover,
                     "Name of the default cover page (empty: none).");
  command.add_option("--default-template", changes.defaultTemplate,
                     "Name of the default template (empty: none).");
}

void AddUserCommands(CLI::App &admin, CommandAction &action, const Options &options) {
  CLI::App *user = Subcommand(admin, "user", "Add, change, remove, list and show users.");
  user->require_subcommand(1);

  for (const bool create : {true, false}) {
    CLI::App *change =
        Subcommand(*user, create ? "add" : "set",
                   create ? "Add a user; properties default to those of a user without an entry "
                            "(7424: no SendFaxes)."
                          : "Change a user; what is not given stays as it is.");
    AddChangeOptions(*change, *options);
    change->callback([options, &action, create] {
      options->user = CheckedUserName(options->user);
      if (const std::string problem = PrepareUserChanges(options->changes); !problem.empty())
        throw CLI::ValidationError(problem);
      SetAction(action, options, [create](AdminOptions &o) {
        return ChangeUserCommand(o.user, o.changes, create, std::cout, std::cerr);
      });
    });
  }

  CLI::App *remove =
      Subcommand(*user, "remove",
                 "Remove a user with the routing entries naming the user, and delete the user's "
                 "stored cover pages, templates and attachments.");
  remove->add_option("USER", options->user, "The user name.")->required();
  remove->add_flag("--keep-files", options->keepFiles, "Leave the stored files on disk.");
  remove->callback([options, &action] {
    options->user = CheckedUserName(options->user);
    SetAction(action, options,
              [](AdminOptions &o) { return RemoveUserCommand(o.user, o.keepFiles, std::cout, std::cerr); });
  });

  CLI::App *list = Subcommand(*user, "list", "List the users with full names and properties.");
  list->add_flag("--json", options->json, "Print a JSON array of objects.");
  list->callback([options, &action] {
    SetAction(action, options, [](AdminOptions &o) { return ListUsersCommand(o.json, std::cout); });
  });

  CLI::App *show =
      Subcommand(*user, "show",
                 "Show a user: properties, fax header, voicemail, saved cover pages, templates and "
                 "attachments with sizes and defaults, blocked numbers and routing entries.");
  show->add_option("USER", options->user, "The user name.")->required();
  show->add_flag("--json", options->json, "Print a JSON object.");
  show->callback([options, &action] {
    options->user = CheckedUserName(options->user);
    SetAction(action, options,
              [](AdminOptions &o) { return ShowUserCommand(o.user, o.json, std::cout, std::cerr); });
  });
}

void AddRouteCommands(CLI::App &admin, CommandAction &action, const Options &options) {
  CLI::App *route = Subcommand(admin, "route",
                               "Routing entries that send received faxes to users, by kind: dtmf (digits the "
                               "caller dialled), csid (the sending station's identifier), ocr-group and "
                               "ocr-keyword (words recognised in the fax).");
  route->require_subcommand(1);
  for (const bool adding : {true, false}) {
    CLI::App *change = Subcommand(*route, adding ? "add" : "remove",
                                  adding ? "Add a routing entry for a user (once; the user must exist)."
                                         : "Remove a user's routing entries of that value.");
    change->add_option("KIND", options->kind, "dtmf, csid, ocr-group or ocr-keyword.")->required();
    change->add_option("USER", options->user, "The user the fax goes to.")->required();
    change->add_option("VALUE", options->value, "The digits, station identifier or words.")->required();
    change->callback([options, &action, adding] {
      const RouteKind kind = CheckedRouteKind(options->kind);
      options->user = CheckedUserName(options->user);
      options->value = InDatabaseText(options->value, "VALUE");
      if (const std::string problem = RouteValueProblem(kind, options->value); adding && !problem.empty())
        throw CLI::ValidationError("VALUE", problem);
      SetAction(action, options, [kind, adding](AdminOptions &o) {
        return adding ? AddRouteCommand(kind, o.user, o.value, std::cout, std::cerr)
                      : RemoveRouteCommand(kind, o.user, o.value, std::cout, std::cerr);
      });
    });
  }
  CLI::App *list = Subcommand(*route, "list", "List the routing entries as the library reads them.");
  list->add_option("--kind", options->kindFilter, "Only this kind.");
  list->add_option("--user", options->userFilter, "Only this user's entries.");
  list->add_flag("--json", options->json, "Print a JSON array of objects.");
  list->callback([options, &action] {
    std::optional<RouteKind> kind;
    if (options->kindFilter) kind = CheckedRouteKind(*options->kindFilter);
    if (options->userFilter) options->userFilter = InDatabaseText(*options->userFilter, "--user");
    SetAction(action, options,
              [kind](AdminOptions &o) { return ListRoutesCommand(kind, o.userFilter, o.json, std::cout); });
  });
}

void AddBlockCommands(CLI::App &admin, CommandAction &action, const Options &options) {
  CLI::App *block =
      Subcommand(admin, "block",
                 "Fax numbers a user's jobs must not dial. A pattern blocks every number whose "
                 "digits begin with its digits; only digits count. Patterns apply while the user "
                 "has BlockNumbers.");
  block->require_subcommand(1);
  for (const bool adding : {true, false}) {
    CLI::App *change = Subcommand(*block, adding ? "add" : "remove",
                                  adding ? "Block numbers for a user (the user must exist)."
                                         : "Unblock: remove the user's patterns with the same digits.");
    change->add_option("USER", options->user, "The user name.")->required();
    change->add_option("PATTERN", options->value, "The pattern, e.g. 0049 or +1 900.")->required();
    change->callback([options, &action, adding] {
      options->user = CheckedUserName(options->user);
      options->value = InDatabaseText(options->value, "PATTERN");
      if (const std::string problem = BlockedPatternProblem(options->value); !problem.empty())
        throw CLI::ValidationError("PATTERN", problem);
      SetAction(action, options, [adding](AdminOptions &o) {
        return adding ? AddBlockCommand(o.user, o.value, std::cout, std::cerr)
                      : RemoveBlockCommand(o.user, o.value, std::cout, std::cerr);
      });
    });
  }
  CLI::App *list = Subcommand(*block, "list", "List a user's blocked-number patterns.");
  list->add_option("USER", options->user, "The user name.")->required();
  list->add_flag("--json", options->json, "Print a JSON array of patterns.");
  list->callback([options, &action] {
    options->user = CheckedUserName(options->user);
    SetAction(action, options,
              [](AdminOptions &o) { return ListBlockCommand(o.user, o.json, std::cout, std::cerr); });
  });
}

}  // namespace

void AddAdminCommand(CLI::App &app, CommandAction &action) {
  auto options = std::make_shared<AdminOptions>();
  CLI::App *admin =
      app.add_subcommand("admin", "Maintain users, routing entries and blocked numbers in tqvadmin.ini.");
  admin->require_subcommand(1);
  admin->footer(kDatabaseFooter);
  admin->add_option("--product-dir", options->productDirectory,
                    "The product directory holding tqvadmin.ini.");
  AddUserCommands(*admin, action, options);
  AddRouteCommands(*admin, action, options);
  AddBlockCommands(*admin, action, options);
}

}  // namespace tqv::tool
