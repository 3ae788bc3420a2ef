#include "cli/HostAdaptersList.h"

#include <string>
#include <utility>

#include "cli/JsonOutput.h"
#include "cli/TextTable.h"
#include "client/Texts.h"

namespace cli {
namespace {

std::string describeFirmware(const client::HostAdapter& adapter) {
  std::vector<std::string> texts;
  for (const auto& [type, version] : adapter.components) {
    texts.emplace_back(type).append(" ").append(version);
  }
  return texts.empty() ? "none" : client::join(texts, ", ");
}

void printTable(std::ostream& out, const std::vector<client::HostAdapter>& adapters) {
  TextTable table({"PORT", "ADAPTER", "FIRMWARE"});
  for (const client::HostAdapter& adapter : adapters) {
    for (const std::string& port : adapter.ports) {
      table.addRow({port, adapter.pci, describeFirmware(adapter)});
    }
  }
  table.print(out);
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
  return client::Value::object(
      {{"pci", adapter.pci}, {"ports", std::move(ports)}, {"components", std::move(components)}});
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
  } else {
    printTable(context.out, adapters);
  }
}

}  // namespace cli
