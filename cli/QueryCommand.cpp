#include "cli/QueryCommand.h"

#include <memory>
#include <string>

#include "cli/Command.h"
#include "cli/InstancesOutput.h"
#include "cli/Session.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "QUERY is one word of the shell: SELECT * FROM CLASS, or SELECT with the properties that are\n"
    "wanted, and WHERE with a condition: = <> < <= > >= LIKE ISA IS NULL AND OR NOT ( ), and ANY\n"
    "in front of an array. Texts stand in quotes, numbers and TRUE and FALSE do not. The patterns\n"
    "of LIKE are those of the language:\n"
    "\n"
    "  WQL       % for any text, _ for any character, [a-f] for one of them\n"
    "  DMTF:CQL  regular expressions for the whole text: .* . [a-f] x|y x+\n"
    "\n"
    "With --json: [{\"path\", \"properties\": {NAME: VALUE}}].\n"
    "\n"
    "Examples:\n"
    "  quorvel query 'SELECT * FROM CIM_ConcreteJob WHERE PercentComplete < 100'\n"
    "  quorvel query 'SELECT DeviceID FROM CIM_LogicalDevice WHERE DeviceID LIKE \"0000:03:%\"'\n"
    "  quorvel query 'SELECT * FROM Orvex_EthernetPort WHERE ANY OperationalStatus = 2' --json\n"
    "  quorvel query 'SELECT JobState FROM CIM_ConcreteJob' --language DMTF:CQL\n"
    "  quorvel query 'SELECT * FROM CIM_ConcreteJob' --host http://127.0.0.1:5988\n";

struct Options {
  std::string text;
  std::string language = "WQL";
  bool isAllShown = false;
  bool areNamesShown = false;
};

ExitStatus showFound(const Context& context, const Options& options) {
  const std::unique_ptr<client::Connection> connection = openConnection(context.options);
  const auto nulls =
      options.isAllShown ? client::NullProperties::Shown : client::NullProperties::Left;
  printInstances(context, connection->select(options.text, options.language), nulls,
                 "no instance matches", options.areNamesShown ? connection.get() : nullptr);
  return ExitStatus::Done;
}

}  // namespace

void addQueryCommand(CLI::App& program, Context& context) {
  Command command(program, "query", "Show the instances that a query finds");
  const auto options = std::make_shared<Options>();
  command.add({"QUERY", "Text of the query", "", true}, options->text);
  command.add({"--language", "Language of the query: WQL (as without it) or DMTF:CQL", "NAME"},
              options->language);
  command.addFlag("--all", "Show properties that are NULL, too", options->isAllShown);
  command.addFlag("--names", "Show the names of values beside the numbers", options->areNamesShown);
  command.setFooter(kFooter);
  command.onChosen([&context, options] {
    context.command = [&context, options] { return showFound(context, *options); };
  });
}

}  // namespace cli
