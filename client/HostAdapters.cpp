#include "client/HostAdapters.h"

#include <map>
#include <utility>

#include "client/ClassNames.h"
#include "client/ServedClasses.h"
#include "client/Snapshot.h"
#include "client/Texts.h"

namespace client {
namespace {

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
  for (const InstanceSnapshot& association : getInstances(connection, kComparisonClass)) {
    const auto component = components.find(association.value<std::string>("Antecedent"));
    if (component != components.end() &&
        association.value<std::string>("Comparison") == kInstalled) {
      installed[association.value<std::string>("Dependent")].push_back(component->second);
    }
  }
  return installed;
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

}  // namespace client
