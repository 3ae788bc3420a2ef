#include "cli/Program.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "Utils/Exception.h"
#include "Utils/Printable.h"
#include "cli/ActivateCommand.h"
#include "cli/AdaptersCommand.h"
#include "cli/AssociationsCommand.h"
#include "cli/CheckCommand.h"
#include "cli/ClassesCommand.h"
#include "cli/Context.h"
#include "cli/DescribeCommand.h"
#include "cli/HostArgument.h"
#include "cli/IdentitiesCommand.h"
#include "cli/InstancesCommand.h"
#include "cli/InvokeCommand.h"
#include "cli/JobsCommand.h"
#include "cli/LocalWords.h"
#include "cli/ShowCommand.h"
#include "cli/UpdateCommand.h"
#include "cli/WatchCommand.h"
#include "client/Fault.h"
#include "host/SharedOptions.h"
#include "midapi/Virtual/VirtualAdapters.h"

namespace cli {
namespace {

constexpr const char* kDescription =
    "Manages the firmware of the Ethernet adapters of this machine, or of a host's.";

constexpr const char* kFooter =
    "The options above may stand before or behind the command.\n"
    "\n"
    "Exit status: 0 done, 1 refused or failed, 2 wrong usage.\n"
    "\n"
    "Examples:\n"
    "  quorvel adapters\n"
    "  quorvel show firmware.rom\n"
    "  quorvel update 0000:03:00.0 firmware.rom\n"
    "  quorvel classes\n"
    "  quorvel describe CIM_ConcreteJob\n"
    "  quorvel instances Orvex_EthernetPort --json\n"
    "  quorvel update --help\n"
    "  quorvel --host jobs\n"
    "  quorvel --host https://admin@server1:5989 jobs\n"
    "\n"
    "With --host a command works in a host that runs elsewhere, or on this machine as a service.\n"
    "Behind the command, --host takes what follows for its ADDRESS only where it begins with\n"
    "http://, https:// or unix:; --host=ADDRESS leaves no doubt.\n"
    "The password for the host comes from --password-file, from the environment variable\n"
    "QUORVEL_PASSWORD, or from a prompt on the terminal.\n";

// Added one by one, so that a further command is one line here and one pair of files.
constexpr void (*kCommands[])(CLI::App&, Context&) = {
    addActivateCommand, addAdaptersCommand, addAssociationsCommand, addCheckCommand,
    addClassesCommand,  addDescribeCommand, addIdentitiesCommand,   addInstancesCommand,
    addInvokeCommand,   addJobsCommand,     addShowCommand,         addUpdateCommand,
    addWatchCommand,
};

std::string describeParseFailure(const CLI::App* app, const CLI::Error& error) {
  std::string command = "quorvel";
  for (auto chosen = app->get_subcommands(); !chosen.empty();
       chosen = chosen.front()->get_subcommands()) {
    command += " " + chosen.front()->get_name();
  }
  return std::string("quorvel: ") + utils::toPrintableLines(error.what()) + "\nTry '" + command +
         " --help'.\n";
}

void addGlobalOptions(CLI::App& app, GlobalOptions& options) {
  host::addAdaptersOption(app, options.adapters);
  app.add_option(
         "--config", options.config,
         "Configuration file (/etc/OrvexQuorvelProvider.conf); Windows takes its registry instead")
      ->type_name("FILE");
  host::addLogLevelOption(app, options.logLevel);
  app.add_option("--host", options.host,
                 "Work in the host at this address, http(s)://[USER@]HOST:PORT or unix:[PATH], not "
                 "in this process; without an address in the service of this machine (unix:)")
      ->type_name("[ADDRESS]")
      ->check(host::notEmpty());
  app.add_option("--password-file", options.passwordFile,
                 "File whose first line is the password for the host")
      ->type_name("FILE")
      ->check(host::notEmpty());
  app.add_option("--cacert", options.caFile,
                 "Certificates (PEM) that vouch for an https host, in place of the system's")
      ->type_name("FILE")
      ->check(host::notEmpty());
  app.add_option("--namespace", options.nameSpace, "Namespace of the host (root/DCIM/zolan)")
      ->type_name("NAME")
      ->check(host::notEmpty());
  app.add_flag("--json", options.isJson, "Print the result as one JSON document");
  for (CLI::Option* option : app.get_options()) {
    option->description(toLocalWords(option->get_description()));
  }
  if (!hasHosts()) {
    for (const char* option : {"--host", "--password-file", "--cacert", "--namespace"}) {
      app.get_option(option)->group("");
    }
  }
}

bool takesWords(const CLI::App& command) {
  const auto any = [](const auto* /*each*/) { return true; };
  return !command.get_subcommands(any).empty() ||
         !command.get_options([](const CLI::Option* each) { return each->get_positional(); })
              .empty();
}

HostArgument completeHostOf(const CLI::App& app, int argc, const char* const* argv) {
  return completeHost({argv + std::min(argc, 1), argv + argc}, [&app](const std::string& text) {
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
      if (command->get_name() == text) {
        return takesWords(*command) ? Word::CommandWithWords : Word::Command;
      }
    }
    return Word::NoCommand;
  });
}

// Returns what may have been meant by arguments that nobody expects; empty where nobody knows.
std::string hintAtAddress(const HostArgument& host, const CLI::Error& error) {
  if (host.follower.empty() ||
      error.get_exit_code() != static_cast<int>(CLI::ExitCodes::ExtrasError)) {
    return "";
  }
  return "If '" + utils::toPrintable(host.follower) +
         "' is meant for --host: an address begins with http://, https:// or unix:.\n";
}

// The prefix says which system it is about, which is plain here.
std::string_view withoutPrefix(std::string_view text) {
  constexpr std::string_view kPrefix = "Quorvel: ";
  return text.starts_with(kPrefix) ? text.substr(kPrefix.size()) : text;
}

ExitStatus runCommand(const Context& context) {
  const auto print = [&context](std::string_view text) {
    context.err << "quorvel: " << utils::toPrintableLines(text) << '\n';
  };
  try {
    return context.command();
  } catch (const client::Fault& fault) {
    print(fault.what());
    return fault.kind() == client::Fault::Kind::Usage ? ExitStatus::Usage : ExitStatus::Failed;
  } catch (const ma::AdapterFault& fault) {
    print(fault.what());
  } catch (const utils::Exception& exception) {
    print(withoutPrefix(exception.what()));
  }
  return ExitStatus::Failed;
}

}  // namespace

int runProgram(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  Context context{out, err, {}, {}};
  CLI::App app(toLocalWords(kDescription), "quorvel");
  // A path may begin with a slash on every system.
  app.allow_windows_style_options(false);
  app.fallthrough();
  app.require_subcommand(0, 1);
  app.set_version_flag("--version", "quorvel " QUORVEL_VERSION);
  app.set_help_flag("-h,--help", "Print help, also for a command");
  app.footer(toLocalHelp(kFooter));
  app.failure_message(describeParseFailure);
  addGlobalOptions(app, context.options);
  for (const auto addCommand : kCommands) {
    addCommand(app, context);
  }

  const HostArgument host = completeHostOf(app, argc, argv);
  ExitStatus status = ExitStatus::Done;
  try {
    // The parser takes them from the back.
    app.parse(std::vector<std::string>(host.arguments.rbegin(), host.arguments.rend()));
    if (!context.command) {
      throw CLI::RequiredError("A command");
    }
    status = runCommand(context);
  } catch (const CLI::ParseError& error) {
    status = app.exit(error, out, err) == 0 ? ExitStatus::Done : ExitStatus::Usage;
    err << hintAtAddress(host, error);
  }

  out.flush();
  if (!out) {
    err << "quorvel: the output could not be written completely\n";
    status = ExitStatus::Failed;
  }
  return static_cast<int>(status);
}

}  // namespace cli
