#include "cli/HostAdaptersList.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "cli/AdapterWords.h"
#include "cli/JsonOutput.h"
#include "cli/Remarks.h"
#include "cli/TextTable.h"
#include "client/Texts.h"

namespace cli {
namespace {

// As ma::AdapterComponent::digest is shown, which has this many bits.
constexpr std::size_t kShownDigits = 8;
constexpr const char* kNothing = "-";

std::string orNothing(const std::string& text) {
  return text.empty() ? kNothing : text;
}

// What the hosts of earlier versions do not tell.
bool tellsAll(const client::HostAdapter& adapter) {
  return adapter.description.has_value();
}

bool isDrivers(const client::HostAdapter& adapter) {
  return !adapter.description->driver.empty() || !adapter.versions.empty();
}

std::string toDeviceText(const client::HostAdapter::Description& adapter) {
  return toIdText(adapter.vendor) + ":" + toIdText(adapter.device);
}

const char* describeUpdatable(const client::HostAdapter::Description& adapter) {
  if (adapter.isBeingWritten) {
    return "being written";
  }
  return adapter.isUpdatable ? "yes" : "no";
}

std::string describeBootType(const client::HostAdapter::Port& port) {
  return port.bootType ? std::string(bootTypeName(static_cast<ma::BootType>(*port.bootType)))
                       : kNothing;
}

std::string describeImages(const client::HostAdapter& adapter) {
  std::vector<std::string> texts;
  for (const auto& [type, version, digest] : adapter.components) {
    std::string& text = texts.emplace_back(type).append(" ").append(version);
    if (!digest.empty()) {
      text.append(" (").append(digest, 0, kShownDigits).append(")");
    }
  }
  return client::join(texts, ", ");
}

std::string orNone(const std::string& text) {
  return text.empty() ? "none" : text;
}

// ---- as the adapters of this machine are shown, see cli/AdaptersList.h

void printDescribed(std::ostream& out, const std::vector<client::HostAdapter>& adapters) {
  TextTable table({"PORT", "ADAPTER", "NAME", "DEVICE", "BOOT", "UPDATABLE", "FIRMWARE"});
  for (const client::HostAdapter& adapter : adapters) {
    const client::HostAdapter::Description& description = *adapter.description;
    for (const client::HostAdapter::Port& port : adapter.ports) {
      table.addRow({port.identifier, adapter.pci, orNothing(description.name),
                    toDeviceText(description), describeBootType(port),
                    describeUpdatable(description), orNone(describeImages(adapter))});
    }
  }
  table.print(out);
}

void addKnown(std::vector<std::string>& lines, const char* what, const std::string& text) {
  if (!text.empty()) {
    lines.push_back(what + text);
  }
}

std::vector<std::string> describeContents(const client::HostAdapter& adapter) {
  const client::HostAdapter::Description& description = *adapter.description;
  std::vector<std::string> lines;
  addKnown(lines, "", description.name);
  addKnown(lines, "part number ", description.partNumber);
  addKnown(lines, "serial number ", description.serialNumber);
  for (const auto& [name, running, stored] : adapter.versions) {
    lines.push_back(describeVersions({name, running, stored}));
  }
  const std::string images = describeImages(adapter);
  addKnown(lines, "", adapter.versions.empty() && images.empty() ? "firmware not known" : images);
  return lines;
}

void printDescribedWithDrivers(std::ostream& out,
                               const std::vector<client::HostAdapter>& adapters) {
  TextTable ports({"PORT", "INTERFACE", "DRIVER", "DEVICE", "UPDATABLE"});
  TextTable contents({"ADAPTER", "IDENTITY AND FIRMWARE"});
  Remarks reasons("Not updatable");
  for (const client::HostAdapter& adapter : adapters) {
    const client::HostAdapter::Description& description = *adapter.description;
    for (const client::HostAdapter::Port& port : adapter.ports) {
      ports.addRow({port.identifier, orNothing(client::join(port.interfaces, ",")),
                    orNothing(description.driver), toDeviceText(description),
                    describeUpdatable(description)});
    }
    std::string pci = adapter.pci;
    for (std::string& line : describeContents(adapter)) {
      contents.addRow({std::exchange(pci, ""), std::move(line)});
    }
    if (!description.whyNotUpdatable.empty()) {
      reasons.add(adapter.pci, description.whyNotUpdatable);
    }
  }
  ports.print(out);
  out << '\n';
  contents.print(out);
  reasons.print(out);
}

// ---- of hosts that tell less

void printTable(std::ostream& out, const std::vector<client::HostAdapter>& adapters) {
  TextTable table({"PORT", "ADAPTER", "FIRMWARE"});
  for (const client::HostAdapter& adapter : adapters) {
    for (const client::HostAdapter::Port& port : adapter.ports) {
      table.addRow({port.identifier, adapter.pci, orNone(describeImages(adapter))});
    }
  }
  table.print(out);
}

void printTablesWithVersions(std::ostream& out, const std::vector<client::HostAdapter>& adapters) {
  TextTable ports({"PORT", "ADAPTER"});
  TextTable firmware({"ADAPTER", "FIRMWARE"});
  for (const client::HostAdapter& adapter : adapters) {
    for (const client::HostAdapter::Port& port : adapter.ports) {
      ports.addRow({port.identifier, adapter.pci});
    }
    std::string pci = adapter.pci;
    for (const auto& [name, running, stored] : adapter.versions) {
      firmware.addRow({std::exchange(pci, ""), describeVersions({name, running, stored})});
    }
    if (const std::string images = describeImages(adapter);
        !images.empty() || adapter.versions.empty()) {
      firmware.addRow({std::exchange(pci, ""), orNone(images)});
    }
  }
  ports.print(out);
  out << '\n';
  firmware.print(out);
}

client::Value toJson(const client::HostAdapter::Port& port) {
  client::Value value = client::Value::object({{"identifier", port.identifier}});
  if (!port.mac.empty()) {
    value.set("mac", port.mac);
  }
  if (port.bootType) {
    value.set("bootType", bootTypeName(static_cast<ma::BootType>(*port.bootType)));
  }
  if (!port.interfaces.empty()) {
    value.set("interfaces", port.interfaces);
  }
  return value;
}

void describe(const client::HostAdapter::Description& adapter, client::Value& result) {
  result.set("name", textOrNull(adapter.name));
  result.set("vendorId", toIdText(adapter.vendor));
  result.set("deviceId", toIdText(adapter.device));
  result.set("updatable", adapter.isUpdatable);
  result.set("whyNotUpdatable", textOrNull(adapter.whyNotUpdatable));
  result.set("isBeingWritten", adapter.isBeingWritten);
  result.set("driver", textOrNull(adapter.driver));
  result.set("partNumber", textOrNull(adapter.partNumber));
  result.set("serialNumber", textOrNull(adapter.serialNumber));
}

client::Value toJson(const client::HostAdapter& adapter) {
  client::Value ports = client::Value::array();
  for (const client::HostAdapter::Port& port : adapter.ports) {
    ports.push(toJson(port));
  }
  client::Value components = client::Value::array();
  for (const auto& [type, version, digest] : adapter.components) {
    components.push(client::Value::object(
        {{"type", type}, {"version", version}, {"digest", textOrNull(digest)}}));
  }
  client::Value versions = client::Value::array();
  for (const auto& [name, running, stored] : adapter.versions) {
    versions.push(client::Value::object(
        {{"name", name}, {"running", textOrNull(running)}, {"stored", textOrNull(stored)}}));
  }
  client::Value result = client::Value::object({{"pci", adapter.pci},
                                                {"ports", std::move(ports)},
                                                {"components", std::move(components)},
                                                {"versions", std::move(versions)}});
  if (tellsAll(adapter)) {
    describe(*adapter.description, result);
  }
  return result;
}

}  // namespace

void printHostAdapters(const Context& context, const std::vector<client::HostAdapter>& adapters) {
  if (context.options.isJson) {
    client::Value document = client::Value::array();
    for (const client::HostAdapter& adapter : adapters) {
      document.push(toJson(adapter));
    }
    printJson(context.out, document);
  } else if (adapters.empty()) {
    context.out << "The host has no adapters.\n";
  } else if (std::all_of(adapters.begin(), adapters.end(), tellsAll)) {
    const bool hasDrivers = std::any_of(adapters.begin(), adapters.end(), isDrivers);
    (hasDrivers ? printDescribedWithDrivers : printDescribed)(context.out, adapters);
  } else if (std::any_of(adapters.begin(), adapters.end(),
                         [](const auto& adapter) { return !adapter.versions.empty(); })) {
    printTablesWithVersions(context.out, adapters);
  } else {
    printTable(context.out, adapters);
  }
}

}  // namespace cli
