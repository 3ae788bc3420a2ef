#include "daemon/CommandLine.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "Utils/Printable.h"
#include "daemon/Posix/Privileges.h"
#include "host/SharedOptions.h"

namespace quorveld {
namespace {

constexpr const char* kDescription =
    "Serves the firmware of this machine's Ethernet adapters to management clients: CIM-XML over "
    "HTTP and HTTPS.";

constexpr const char* kFooter =
    "Arguments go before the settings of the file. SIGTERM ends the daemon when no update runs "
    "any more.\n"
    "\n"
    "Exit status: 0 done, 1 failed, 2 wrong usage or settings.\n"
    "\n"
    "Examples:\n"
    "  quorveld\n"
    "  quorveld --listen 127.0.0.1:15988 --adapters ./adapters\n"
    "  quorveld --config ./quorveld.conf --log-level 3\n";

// An empty text or list is an option that was not given.
struct Arguments {
  std::string config;
  std::vector<std::string> listen;
  std::string adapters;
  std::vector<std::string> modules;
  std::string logLevel;
};

std::string describeParseFailure(const CLI::App* /*app*/, const CLI::Error& error) {
  return std::string("quorveld: ") + utils::toPrintableLines(error.what()) +
         "\nTry 'quorveld --help'.\n";
}

void addOptions(CLI::App& app, Arguments& arguments) {
  app.add_option("--config", arguments.config,
                 std::string("Settings of the daemon (") + DaemonConfig::kDefaultPath + ")")
      ->type_name("FILE")
      ->check(host::notEmpty());
  app.add_option("--listen", arguments.listen,
                 "Where to listen (127.0.0.1:5988), https:ADDRESS:PORT for HTTPS, unix:PATH for "
                 "programs of this machine; may be repeated")
      ->type_name("ADDRESS:PORT")
      ->allow_extra_args(false);
  host::addAdaptersOption(app, arguments.adapters);
  app.add_option("--module", arguments.modules,
                 "A module to load in the place of the two that belong to the program; may be "
                 "repeated")
      ->type_name("FILE")
      ->allow_extra_args(false)
      ->check(host::notEmpty());
  host::addLogLevelOption(app, arguments.logLevel);
}

DaemonConfig merge(const Arguments& arguments) {
  DaemonConfig config =
      arguments.config.empty() ? readDefaultDaemonConfig() : readDaemonConfig(arguments.config);
  if (!arguments.listen.empty()) {
    config.listen.clear();
    for (const std::string& text : arguments.listen) {
      config.listen.push_back(demandEndpoint("--listen: ", text));
    }
  }
  if (!arguments.adapters.empty()) {
    config.adapters = arguments.adapters;
  }
  if (!arguments.modules.empty()) {
    config.modules = arguments.modules;
  }
  if (!arguments.logLevel.empty()) {
    config.logLevel = arguments.logLevel;
  }
  completeConfig(config, readPrivileges());
  demandPrivateAgentSettings(config);
  return config;
}

}  // namespace

CommandLine readCommandLine(int argc, const char* const* argv, std::ostream& out,
                            std::ostream& err) {
  Arguments arguments;
  CLI::App app(kDescription, "quorveld");
  app.set_version_flag("--version", "quorveld " QUORVEL_VERSION);
  app.set_help_flag("-h,--help", "Print help");
  app.footer(kFooter);
  app.failure_message(describeParseFailure);
  addOptions(app, arguments);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return {std::nullopt, app.exit(error, out, err) == 0 ? ExitStatus::Done : ExitStatus::Usage};
  }
  return {merge(arguments), ExitStatus::Done};
}

}  // namespace quorveld
