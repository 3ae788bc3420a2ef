#include "cli/HostAdapters.h"

#include <map>
#include <memory>
#include <utility>

#include "cli/Output.h"
#include "cli/ServedClasses.h"
#include "cli/Session.h"
#include "cli/TextTable.h"

namespace cli {
namespace {

constexpr const char* kAdapterClass = "Orvex_PortController";
constexpr const char* kPortClass = "Orvex_EthernetPort";
constexpr const char* kIdentityClass = "Orvex_SoftwareIdentity";
constexpr const char* kAssociationClass = "Orvex_ElementSoftwareIdentity";
constexpr const char* kIdentifier = "DeviceID";
constexpr const char* kInstalled = "installed";

// What is installed, by the object path of the adapter.
using Installed = std::map<std::string, std::vector<HostAdapter::Component>>;

Installed readInstalled(Connection& connection) {
  std::map<std::string, HostAdapter::Component> components;
  for (const InstanceSnapshot& identity : getInstances(connection, kIdentityClass)) {
    components[identity.path] = {join(identity.value<std::vector<std::string>>("TargetTypes"), "+"),
                                 identity.value<std::string>("VersionString")};
  }
  Installed installed;
  for (const InstanceSnapshot& association : getInstances(connection, kAssociationClass)) {
    const auto component = components.find(association.value<std::string>("Antecedent"));
    if (component != components.end() &&
        association.value<std::string>("Comparison") == kInstalled) {
      installed[association.value<std::string>("Dependent")].push_back(component->second);
    }
  }
  return installed;
}

std::string describeFirmware(const HostAdapter& adapter) {
  std::vector<std::string> texts;
  for (const auto& [type, version] : adapter.components) {
    texts.emplace_back(type).append(" ").append(version);
  }
  return texts.empty() ? "none" : join(texts, ", ");
}

void printTable(std::ostream& out, const std::vector<HostAdapter>& adapters) {
  TextTable table({"PORT", "ADAPTER", "FIRMWARE"});
  for (const HostAdapter& adapter : adapters) {
    for (const std::string& port : adapter.ports) {
      table.addRow({port, adapter.pci, describeFirmware(adapter)});
    }
  }
  table.print(out);
}

Json toJson(const HostAdapter& adapter) {
  Json result;
  result["pci"] = adapter.pci;
  result["ports"] = Json::array();
  for (const std::string& port : adapter.ports) {
    result["ports"].push_back({{"identifier", port}});
  }
  result["components"] = Json::array();
  for (const auto& [type, version] : adapter.components) {
    result["components"].push_back({{"type", type}, {"version", version}});
  }
  return result;
}

}  // namespace

std::vector<HostAdapter> readHostAdapters(Connection& connection) {
  const Instances ports = getInstances(connection, kPortClass);
  Installed installed = readInstalled(connection);
  std::vector<HostAdapter> adapters;
  for (const InstanceSnapshot& instance : demandInstances(connection, kAdapterClass)) {
    HostAdapter adapter;
    adapter.pci = instance.value<std::string>(kIdentifier);
    for (const InstanceSnapshot& port : ports) {
      if (const auto identifier = port.value<std::string>(kIdentifier);
          identifier.starts_with(adapter.pci + ".")) {
        adapter.ports.push_back(identifier);
      }
    }
    adapter.components = std::move(installed[instance.path]);
    adapters.push_back(std::move(adapter));
  }
  return adapters;
}

ExitStatus listHostAdapters(const Context& context) {
  const std::unique_ptr<Connection> connection = openConnection(context.options);
  const std::vector<HostAdapter> adapters = readHostAdapters(*connection);
  if (context.options.isJson) {
    Json document = Json::array();
    for (const HostAdapter& adapter : adapters) {
      document.push_back(toJson(adapter));
    }
    printJson(context.out, document);
  } else if (adapters.empty()) {
    context.out << "The host has no adapters.\n";
  } else {
    printTable(context.out, adapters);
  }
  return ExitStatus::Done;
}

}  // namespace cli
