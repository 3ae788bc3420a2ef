#include "cli/ClassesCommand.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "cli/Command.h"
#include "cli/JsonOutput.h"
#include "cli/Session.h"
#include "cli/TextTable.h"
#include "client/Texts.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "A class that several agents serve has the instances of all of them, those of the agent that "
    "is\n"
    "named first in front. 'quorvel instances CLASS' shows them. A host (--host) does not tell "
    "its\n"
    "agents.\n"
    "\n"
    "With --json: [{\"class\", \"agents\": [NAME]}].\n"
    "\n"
    "Examples:\n"
    "  quorvel classes\n"
    "  quorvel classes --json\n"
    "  quorvel classes --host http://127.0.0.1:5988\n";

client::Value toJson(const client::ServingAgents& classes) {
  client::Value document = client::Value::array();
  for (const auto& [name, agents] : classes) {
    document.push(client::Value::object({{"class", name}, {"agents", agents}}));
  }
  return document;
}

void printTable(std::ostream& out, const client::ServingAgents& classes) {
  const bool areAgentsKnown =
      std::any_of(classes.begin(), classes.end(),
                  [](const auto& servedClass) { return !servedClass.second.empty(); });
  TextTable table(areAgentsKnown ? std::vector<std::string>{"CLASS", "SERVED BY"}
                                 : std::vector<std::string>{"CLASS"});
  for (const auto& [name, agents] : classes) {
    table.addRow({name, client::join(agents, ", ")});
  }
  table.print(out);
}

ExitStatus showClasses(const Context& context) {
  const std::unique_ptr<client::Connection> connection = openConnection(context.options);
  const client::ServingAgents classes = connection->getClasses();
  if (context.options.isJson) {
    printJson(context.out, toJson(classes));
  } else {
    printTable(context.out, classes);
  }
  return ExitStatus::Done;
}

}  // namespace

void addClassesCommand(CLI::App& program, Context& context) {
  Command command(program, "classes", "Show the CIM classes and the agents that serve them");
  command.setFooter(kFooter);
  command.onChosen([&context] { context.command = [&context] { return showClasses(context); }; });
}

}  // namespace cli
