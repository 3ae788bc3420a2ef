#include "cli/InstancesCommand.h"

#include <memory>
#include <string>

#include "cli/Command.h"
#include "cli/InstancesOutput.h"
#include "cli/Session.h"
#include "client/ServedClasses.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "Examples:\n"
    "  quorvel instances Orvex_EthernetPort\n"
    "  quorvel instances Orvex_SoftwareInstallationService --all\n"
    "  quorvel instances Orvex_PortController --json\n"
    "  quorvel instances Orvex_ConcreteJob --names\n"
    "  quorvel instances CIM_ConcreteJob --host http://127.0.0.1:5988\n";

struct Options {
  std::string className;
  bool isAllShown = false;
  bool areNamesShown = false;
};

ExitStatus showInstances(const Context& context, const Options& options) {
  const std::unique_ptr<client::Connection> connection = openConnection(context.options);
  const auto nulls =
      options.isAllShown ? client::NullProperties::Shown : client::NullProperties::Left;
  printInstances(context, client::demandInstances(*connection, options.className), nulls,
                 options.className + " has no instances",
                 options.areNamesShown ? connection.get() : nullptr);
  return ExitStatus::Done;
}

}  // namespace

void addInstancesCommand(CLI::App& program, Context& context) {
  Command command(program, "instances", "Show the instances of a CIM class and their properties");
  const auto options = std::make_shared<Options>();
  command.add({"CLASS", "Name of the class", "", true}, options->className);
  command.addFlag("--all", "Show properties that are NULL, too", options->isAllShown);
  command.addFlag("--names", "Show the names of values beside the numbers", options->areNamesShown);
  command.setFooter(kFooter);
  command.onChosen([&context, options] {
    context.command = [&context, options] { return showInstances(context, *options); };
  });
}

}  // namespace cli
