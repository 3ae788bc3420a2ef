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
// What an adapter has.
struct Firmware {
  std::vector<HostAdapter::Component> components;
  std::vector<HostAdapter::Versions> versions;

  // Takes in what a piece of software is to the adapter.
  void add(const InstanceSnapshot& software, const std::string& relation);
  [[nodiscard]] HostAdapter::Versions& versionsOf(const std::string& name);
};

void Firmware::add(const InstanceSnapshot& software, const std::string& relation) {
  const auto version = software.value<std::string>("VersionString");
  const auto name = software.value<std::string>("Name");  // "0000:03:00/fw.undi"
  if (relation == "installed") {
    components.push_back(
        {join(software.value<std::vector<std::string>>("TargetTypes"), "+"), version});
  } else if (relation == "running") {
    versionsOf(name).running = version;
  } else if (relation == "stored") {
    versionsOf(name).stored = version;
  }
}

HostAdapter::Versions& Firmware::versionsOf(const std::string& name) {
  const std::string part = name.substr(name.rfind('/') + 1);
  for (HostAdapter::Versions& known : versions) {
    if (known.name == part) {
      return known;
    }
  }
  return versions.emplace_back(HostAdapter::Versions{part, {}, {}});
}

// Returns what is on the adapters, by their object paths.
std::map<std::string, Firmware> readFirmware(Connection& connection) {
  std::map<std::string, InstanceSnapshot> identities;
  for (InstanceSnapshot& identity : getInstances(connection, kIdentityClass)) {
    std::string path = identity.path;
    identities.emplace(std::move(path), std::move(identity));
  }
  std::map<std::string, Firmware> firmware;
  for (const InstanceSnapshot& association : getInstances(connection, kComparisonClass)) {
    const auto software = identities.find(association.value<std::string>("Antecedent"));
    if (software != identities.end()) {
      firmware[association.value<std::string>("Dependent")].add(
          software->second, association.value<std::string>("Comparison"));
    }
  }
  return firmware;
}

}  // namespace

std::vector<HostAdapter> readHostAdapters(Connection& connection) {
  const Instances ports = getInstances(connection, kPortClass);
  std::map<std::string, Firmware> firmware = readFirmware(connection);
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
    Firmware& own = firmware[instance.path];
    adapter.components = std::move(own.components);
    adapter.versions = std::move(own.versions);
    adapters.push_back(std::move(adapter));
  }
  return adapters;
}

}  // namespace client
