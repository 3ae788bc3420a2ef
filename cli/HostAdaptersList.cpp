#include "cli/HostAdaptersList.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "cli/AdapterWords.h"
#include "cli/JsonOutput.h"
#include "cli/TextTable.h"
#include "client/Texts.h"

namespace cli {
namespace {

std::string describeImages(const client::HostAdapter& adapter) {
  std::vector<std::string> texts;
  for (const auto& [type, version] : adapter.components) {
    texts.emplace_back(type).append(" ").append(version);
  }
  return client::join(texts, ", ");
}

void printTable(std::ostream& out, const std::vector<client::HostAdapter>& adapters) {
  TextTable table({"PORT", "ADAPTER", "FIRMWARE"});
  for (const client::HostAdapter& adapter : adapters) {
    const std::string images = describeImages(adapter);
    for (const std::string& port : adapter.ports) {
      table.addRow({port, adapter.pci, images.empty() ? "none" : images});
    }
  }
  table.print(out);
}

// As the adapters of this machine are shown, see cli/AdaptersList.h.
void printTablesWithVersions(std::ostream& out, const std::vector<client::HostAdapter>& adapters) {
  TextTable ports({"PORT", "ADAPTER"});
  TextTable firmware({"ADAPTER", "FIRMWARE"});
  for (const client::HostAdapter& adapter : adapters) {
    for (const std::string& port : adapter.ports) {
      ports.addRow({port, adapter.pci});
    }
    std::string pci = adapter.pci;
    for (const auto& [name, running, stored] : adapter.versions) {
      firmware.addRow({std::exchange(pci, ""), describeVersions({name, running, stored})});
    }
    if (const std::string images = describeImages(adapter);
        !images.empty() || adapter.versions.empty()) {
      firmware.addRow({std::exchange(pci, ""), images.empty() ? "none" : images});
    }
  }
  ports.print(out);
  out << '\n';
  firmware.print(out);
}

client::Value toJson(const client::HostAdapter& adapter) {
  client::Value ports = client::Value::array();
  for (const std::string& port : adapter.ports) {
    ports.push(client::Value::object({{"identifier", port}}));
  }
  client::Value components = client::Value::array();
  for (const auto& [type, version] : adapter.components) {
    components.push(client::Value::object({{"type", type}, {"version", version}}));
  }
  client::Value versions = client::Value::array();
  for (const auto& [name, running, stored] : adapter.versions) {
    versions.push(client::Value::object(
        {{"name", name}, {"running", textOrNull(running)}, {"stored", textOrNull(stored)}}));
  }
  return client::Value::object({{"pci", adapter.pci},
                                {"ports", std::move(ports)},
                                {"components", std::move(components)},
                                {"versions", std::move(versions)}});
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
  } else if (std::any_of(adapters.begin(), adapters.end(),
                         [](const auto& adapter) { return !adapter.versions.empty(); })) {
    printTablesWithVersions(context.out, adapters);
  } else {
    printTable(context.out, adapters);
  }
}

}  // namespace cli
