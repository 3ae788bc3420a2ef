#include "cli/AdaptersCommand.h"

#include <charconv>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Utils/FirmwareTypes.h"
#include "Utils/Format.h"
#include "Utils/Printable.h"
#include "cli/Command.h"
#include "cli/HostAdaptersList.h"
#include "cli/JsonOutput.h"
#include "cli/Session.h"
#include "cli/TextTable.h"
#include "client/Fault.h"
#include "midapi/AdapterId.h"
#include "midapi/Virtual/VirtualAdapters.h"
#include "platform/Texts.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "One line for each port. FIRMWARE names the type and version of each image in the flash, with\n"
    "a digest that tells images of one version apart. A host (--host) tells port, adapter and\n"
    "the type and version of each image, and nothing else.\n"
    "\n"
    "Examples:\n"
    "  quorvel adapters\n"
    "  quorvel adapters list --json --adapters /tmp/adapters\n"
    "  quorvel adapters --host https://admin@server1:5989\n"
    "  quorvel adapters add --help\n";

constexpr const char* kAddFooter =
    "Makes a virtual adapter: a folder in the adapters directory with a description and a flash\n"
    "file. An address that is taken is refused.\n"
    "\n"
    "Example:\n"
    "  quorvel adapters add --pci 0000:03:00 --ports 2 --vendor 1af4 --device 1041 \\\n"
    "      --name \"Lab adapter\" --rom /usr/lib/ipxe/qemu/pxe-virtio.rom\n";

constexpr int kHexadecimal = 16;
constexpr std::size_t kIdDigits = 4;
constexpr unsigned kShownDigestBits = 32;

std::string_view bootTypeName(ma::BootType type) {
  switch (type) {
    case ma::BootType::None:
      return "none";
    case ma::BootType::Pxe:
      return "PXE";
    case ma::BootType::Iscsi:
      return "iSCSI";
    case ma::BootType::Fcoe:
      return "FCoE";
    case ma::BootType::Uefi:
      return "UEFI";
  }
  return "unknown";
}

std::string toIdText(std::uint16_t id) {
  return utils::format("%04x", static_cast<unsigned>(id));
}

std::string toDigestText(std::uint64_t digest) {
  return utils::format("%016llx", static_cast<unsigned long long>(digest));
}

// ---- list

std::string describeComponent(const ma::AdapterComponent& component) {
  const auto shownDigest = static_cast<unsigned>(component.digest >> kShownDigestBits);
  std::string text = std::string(utils::firmwareTypeName(component.type)) + " " +
                     component.version.toString() + utils::format(" (%08x)", shownDigest);
  if (!component.isForAdapter) {
    text += " for " + toIdText(component.vendor) + ":" + toIdText(component.device);
  }
  return text;
}

std::string describeFirmware(const ma::AdapterListing& adapter) {
  if (!adapter.flashDefect.empty()) {
    return "damaged";
  }
  std::string text;
  for (const ma::AdapterComponent& component : adapter.components) {
    text += (text.empty() ? "" : ", ") + describeComponent(component);
  }
  return text.empty() ? "none" : text;
}

void printTable(std::ostream& out, const ma::AdapterList& list) {
  TextTable table({"PORT", "ADAPTER", "NAME", "DEVICE", "BOOT", "UPDATABLE", "FIRMWARE"});
  for (const ma::AdapterListing& adapter : list.adapters) {
    for (const ma::AdapterPort& port : adapter.ports) {
      table.addRow({port.identifier, adapter.pci, adapter.name,
                    toIdText(adapter.vendor) + ":" + toIdText(adapter.device),
                    std::string(bootTypeName(port.bootType)), adapter.isUpdatable ? "yes" : "no",
                    describeFirmware(adapter)});
    }
  }
  table.print(out);
}

client::Value toJson(const std::vector<ma::AdapterPort>& ports) {
  client::Value result = client::Value::array();
  for (const ma::AdapterPort& port : ports) {
    result.push(client::Value::object({{"identifier", port.identifier},
                                       {"mac", port.mac},
                                       {"bootType", bootTypeName(port.bootType)}}));
  }
  return result;
}

client::Value toJson(const std::vector<ma::AdapterComponent>& components) {
  client::Value result = client::Value::array();
  for (const ma::AdapterComponent& component : components) {
    result.push(client::Value::object({{"type", utils::firmwareTypeName(component.type)},
                                       {"version", component.version.toString()},
                                       {"vendorId", toIdText(component.vendor)},
                                       {"deviceId", toIdText(component.device)},
                                       {"forAdapter", component.isForAdapter},
                                       {"length", component.length},
                                       {"digest", toDigestText(component.digest)}}));
  }
  return result;
}

client::Value toJson(const ma::AdapterListing& adapter) {
  client::Value result;
  result.set("pci", adapter.pci);
  result.set("name", adapter.name);
  result.set("vendorId", toIdText(adapter.vendor));
  result.set("deviceId", toIdText(adapter.device));
  result.set("updatable", adapter.isUpdatable);
  result.set("ports", toJson(adapter.ports));
  result.set("components", toJson(adapter.components));
  result.set("flashDefect",
             adapter.flashDefect.empty() ? client::Value() : client::Value(adapter.flashDefect));
  result.set("flashBytes", adapter.flashBytes);
  result.set("writeRate", adapter.writeRate);
  result.set("capabilityWord", adapter.capabilityWord);
  return result;
}

void warnAboutProblems(std::ostream& err, const ma::AdapterList& list) {
  for (const ma::AdapterProblem& problem : list.problems) {
    err << "quorvel: warning: " << utils::toPrintable(problem.place)
        << " is passed over: " << utils::toPrintable(problem.text)
        << "\n  next: " << utils::toPrintable(problem.advice) << "\n";
  }
  for (const ma::AdapterListing& adapter : list.adapters) {
    if (!adapter.flashDefect.empty()) {
      err << "quorvel: warning: the flash of " << adapter.pci
          << " holds no valid images: " << utils::toPrintable(adapter.flashDefect)
          << "\n  next: install firmware with 'quorvel update'\n";
    }
  }
}

ExitStatus listAdapters(const Context& context) {
  if (!context.options.host.empty()) {
    printHostAdapters(context, client::readHostAdapters(*openConnection(context.options)));
    return ExitStatus::Done;
  }
  demandConsistent(context.options);
  applyOptions(context.options);
  const ma::VirtualAdapters adapters;
  const ma::AdapterList list = adapters.list();
  warnAboutProblems(context.err, list);
  if (context.options.isJson) {
    client::Value document = client::Value::array();
    for (const ma::AdapterListing& adapter : list.adapters) {
      document.push(toJson(adapter));
    }
    printJson(context.out, document);
  } else if (list.adapters.empty()) {
    context.out << "There are no adapters in "
                << utils::toPrintable(platform::toShownText(adapters.directory()))
                << ". Make one with 'quorvel adapters add', or name another directory with "
                   "--adapters.\n";
  } else {
    printTable(context.out, list);
  }
  return ExitStatus::Done;
}

// ---- add

struct AddOptions {
  std::string pci;
  unsigned ports = 1;
  std::string vendor;
  std::string device;
  std::string name = "Virtual adapter";
  std::string rom;
  std::uint64_t rate = ma::kDefaultWriteRate;
};

std::optional<std::uint16_t> parseId(const std::string& text) {
  std::uint16_t id = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, id, kHexadecimal);
  if (text.size() != kIdDigits || error != std::errc() || stop != end) {
    return std::nullopt;
  }
  return id;
}

std::string checkId(const std::string& text) {
  return parseId(text) ? "" : "'" + text + "' must be four hexadecimal digits, like 1af4";
}

std::string checkAddress(const std::string& text) {
  return ma::parseAdapterAddress(text) ? "" : "'" + text + "' must be like 0000:03:00";
}

ma::AdapterSpec toSpec(const AddOptions& options) {
  ma::AdapterSpec spec;
  spec.pci = ma::parseAdapterAddress(options.pci).value();
  spec.name = options.name;
  spec.vendor = parseId(options.vendor).value();
  spec.device = parseId(options.device).value();
  spec.ports = options.ports;
  spec.rom = platform::toPath(options.rom);
  spec.writeRate = options.rate;
  return spec;
}

ExitStatus addAdapter(const Context& context, const AddOptions& options) {
  if (!context.options.host.empty()) {
    throw client::Fault(
        "'adapters add' does not go with --host: it makes an adapter on this machine",
        client::Fault::Kind::Usage);
  }
  demandConsistent(context.options);
  applyOptions(context.options);
  const ma::VirtualAdapters adapters;
  const ma::AdapterSpec spec = toSpec(options);
  adapters.add(spec);

  ma::AdapterList made = adapters.list();
  made.problems.clear();
  std::erase_if(made.adapters, [&spec](const ma::AdapterListing& adapter) {
    return adapter.pci != ma::toString(spec.pci);
  });
  if (made.adapters.empty()) {
    throw client::Fault("adapter " + ma::toString(spec.pci) + " was made, but is gone from " +
                        platform::toShownText(adapters.directory()) +
                        " already; look who else works there");
  }
  if (context.options.isJson) {
    printJson(context.out, toJson(made.adapters.front()));
  } else {
    context.out << "Added to " << utils::toPrintable(platform::toShownText(adapters.directory()))
                << ":\n";
    printTable(context.out, made);
  }
  return ExitStatus::Done;
}

void addAddCommand(Command& parent, Context& context) {
  Command command(parent, "add", "Make a virtual adapter");
  const auto options = std::make_shared<AddOptions>();
  command.add({"--pci", "PCI address", "0000:03:00", true, checkAddress}, options->pci);
  command.add({"--ports", "Number of ports; 1 by default", "1..8"}, options->ports, 1,
              ma::kMaxPorts);
  command.add({"--vendor", "PCI vendor id", "1af4", true, checkId}, options->vendor);
  command.add({"--device", "PCI device id", "1041", true, checkId}, options->device);
  command.add({"--name", "Name of the adapter", "TEXT"}, options->name);
  command.add({"--rom", "File whose images the flash holds at first", "FILE", true}, options->rom);
  command.add(
      {"--rate", "Write rate of the flash; 131072 by default,\n0 for no limit", "BYTES_PER_SECOND"},
      options->rate);
  command.setFooter(kAddFooter);
  command.onChosen([&context, options] {
    context.command = [&context, options] { return addAdapter(context, *options); };
  });
}

}  // namespace

void addAdaptersCommand(CLI::App& program, Context& context) {
  Command command(program, "adapters", "Show the adapters and their firmware, or make one");
  command.takeOneCommandAtMost();
  Command(command, "list", "Show the adapters (the same without 'list')");
  command.setFooter(kFooter);
  command.onChosen([&context] {
    if (!context.command) {
      context.command = [&context] { return listAdapters(context); };
    }
  });
  addAddCommand(command, context);
}

}  // namespace cli
