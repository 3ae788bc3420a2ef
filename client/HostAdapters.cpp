#include "client/HostAdapters.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

#include "Utils/Ascii.h"
#include "client/ClassNames.h"
#include "client/IdentityInfo.h"
#include "client/ServedClasses.h"
#include "client/Snapshot.h"
#include "client/Texts.h"

namespace client {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* kIdentifier = "DeviceID";
constexpr std::size_t kOctetDigits = 2;

// Returns "02:54:4e:00:00:30" for the "02544E000030" of an instance.
std::string toMac(const std::string& digits) {
  std::string mac;
  for (std::size_t at = 0; at < digits.size(); at += kOctetDigits) {
    mac += (at == 0 ? "" : ":") + digits.substr(at, kOctetDigits);
  }
  std::transform(mac.begin(), mac.end(), mac.begin(), utils::toLowerAscii);
  return mac;
}

HostAdapter::Port readPort(const InstanceSnapshot& instance) {
  HostAdapter::Port port;
  port.identifier = instance.value<std::string>(kIdentifier);
  if (const Texts addresses = instance.value<Texts>("NetworkAddresses"); !addresses.empty()) {
    port.mac = toMac(addresses.front());
  }
  if (const PropertySnapshot* const bootType = instance.find("BootType")) {
    port.bootType = bootType->value.as<std::uint32_t>();
  }
  port.interfaces = instance.value<Texts>("InterfaceNames");
  return port;
}

std::optional<HostAdapter::Description> readDescription(const InstanceSnapshot& instance) {
  if (instance.find("IsUpdatable") == nullptr) {
    return std::nullopt;
  }
  return HostAdapter::Description{
      instance.value<std::string>("ElementName"),     instance.value<std::uint16_t>("VendorID"),
      instance.value<std::uint16_t>("PCIDeviceID"),   instance.value<bool>("IsUpdatable"),
      instance.value<std::string>("WhyNotUpdatable"), instance.value<bool>("IsBeingWritten"),
      instance.value<std::string>("DriverName"),      instance.value<std::string>("PartNumber"),
      instance.value<std::string>("SerialNumber")};
}

std::string readDigest(const InstanceSnapshot& software) {
  const Texts digests = findIdentityInfo(software, kDigestInfo);
  return digests.empty() ? std::string() : digests.front();
}

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
        {join(software.value<Texts>("TargetTypes"), "+"), version, readDigest(software)});
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
  std::map<std::string, std::vector<HostAdapter::Port>> ports;  // by adapter
  for (const InstanceSnapshot& instance : getInstances(connection, kPortClass)) {
    HostAdapter::Port port = readPort(instance);
    ports[port.identifier.substr(0, port.identifier.rfind('.'))].push_back(std::move(port));
  }
  std::map<std::string, Firmware> firmware = readFirmware(connection);
  std::vector<HostAdapter> adapters;
  for (const InstanceSnapshot& instance : demandInstances(connection, kAdapterClass)) {
    HostAdapter adapter;
    adapter.pci = instance.value<std::string>(kIdentifier);
    adapter.ports = std::move(ports[adapter.pci]);
    adapter.description = readDescription(instance);
    Firmware& own = firmware[instance.path];
    adapter.components = std::move(own.components);
    adapter.versions = std::move(own.versions);
    adapters.push_back(std::move(adapter));
  }
  return adapters;
}

}  // namespace client
