#include "cli/InstancesCommand.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "Utils/Printable.h"
#include "cli/Command.h"
#include "cli/JsonOutput.h"
#include "cli/Output.h"
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

// What there is to say of the classes of instances, asked for once each.
class Descriptions {
 public:
  explicit Descriptions(client::Connection& connection) : m_connection(connection) {}

  // Returns null for a class of which nothing is known.
  [[nodiscard]] const client::ClassDescription* find(const std::string& className) {
    const auto [entry, isNew] = m_descriptions.try_emplace(className);
    if (isNew) {
      entry->second = m_connection.findClass(className);
    }
    return entry->second ? &*entry->second : nullptr;
  }

 private:
  client::Connection& m_connection;
  std::map<std::string, std::optional<client::ClassDescription>> m_descriptions;
};

// Returns {NAME: name or names} of the properties whose numbers have names.
client::Value namesOf(const client::InstanceSnapshot& instance,
                      const client::ClassDescription* described) {
  client::Value names = client::Value::object();
  for (const client::PropertySnapshot& property : instance.properties) {
    const client::ElementDescription* element =
        described != nullptr ? described->findProperty(property.name) : nullptr;
    const client::Value found =
        element != nullptr ? client::findNames(element->values, property.value) : client::Value();
    if (!found.isNull()) {
      names.set(property.name, found);
    }
  }
  return names;
}

ExitStatus showInstances(const Context& context, const Options& options) {
  const std::unique_ptr<client::Connection> connection = openConnection(context.options);
  const auto nulls =
      options.isAllShown ? client::NullProperties::Shown : client::NullProperties::Left;
  const client::Instances instances = client::demandInstances(*connection, options.className);
  Descriptions descriptions(*connection);
  const auto describe = [&](const client::InstanceSnapshot& instance) {
    return options.areNamesShown ? descriptions.find(instance.className) : nullptr;
  };
  if (context.options.isJson) {
    client::Value document = client::Value::array();
    for (const client::InstanceSnapshot& instance : instances) {
      client::Value shown = client::toValue(instance, nulls);
      if (options.areNamesShown) {
        shown.set("names", namesOf(instance, describe(instance)));
      }
      document.push(std::move(shown));
    }
    printJson(context.out, document);
  } else if (instances.empty()) {
    context.out << utils::toPrintable(options.className) << " has no instances\n";
  } else {
    const char* separator = "";
    for (const client::InstanceSnapshot& instance : instances) {
      context.out << separator << utils::toPrintable(instance.path) << '\n';
      printProperties(context.out, instance.properties, nulls, describe(instance));
      separator = "\n";
    }
  }
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
