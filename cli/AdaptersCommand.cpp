#include "cli/AdaptersCommand.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Utils/Printable.h"
#include "cli/AdaptersList.h"
#include "cli/Command.h"
#include "cli/HostAdaptersList.h"
#include "cli/JsonOutput.h"
#include "cli/Session.h"
#include "client/Fault.h"
#include "midapi/AdapterId.h"
#include "midapi/MidApi.h"
#include "midapi/Virtual/VirtualAdapters.h"
#include "platform/Texts.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "The machine's own Ethernet adapters and virtual ones, as the setting Adapters says. With\n"
    "--adapters the virtual ones of that directory alone.\n"
    "\n"
    "One line for each port. Firmware is what the driver tells of the adapter's firmware: the\n"
    "version that works now, and the stored one where it is another; and type and version of\n"
    "each image in the flash, with a digest that tells images of one version apart. Below stands\n"
    "why firmware cannot be replaced. A host (--host) of an earlier version tells port, adapter,\n"
    "the versions and the type and version of each image alone.\n"
    "\n"
    "With --json: [{\"pci\", \"kind\": \"kernel\" or \"virtual\", \"ports\", ...}]; what is not\n"
    "known is null.\n"
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

// ---- list

// Nothing is listed: tells where adapters would be, and what to do.
void explainNoAdapters(std::ostream& out) {
  const std::vector<ma::AdapterKind> kinds = ma::adapterKinds();
  const auto count = [&kinds](ma::AdapterKind kind) {
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
  };
  const std::string directory =
      utils::toPrintable(platform::toShownText(ma::VirtualAdapters().directory()));
  if (!count(ma::AdapterKind::Kernel)) {
    out << "There are no adapters in " << directory
        << ". Make one with 'quorvel adapters add', or name another directory with --adapters.\n";
  } else if (!count(ma::AdapterKind::Virtual)) {
    out << "There are no adapters: this machine has no Ethernet adapter on a PCI bus, and the "
           "setting "
           "Adapters leaves virtual ones out.\n";
  } else {
    out << "There are no adapters: this machine has no Ethernet adapter on a PCI bus, and there is "
           "no virtual one in "
        << directory
        << ". Make one with 'quorvel adapters add', or name another directory with --adapters.\n";
  }
}

ExitStatus listAdapters(const Context& context) {
  if (!context.options.host.empty()) {
    printHostAdapters(context, client::readHostAdapters(*openConnection(context.options)));
    return ExitStatus::Done;
  }
  demandConsistent(context.options);
  applyOptions(context.options);
  const ma::AdapterList list = ma::listAdapters();
  warnAboutAdapters(context.err, list);
  if (context.options.isJson) {
    client::Value document = client::Value::array();
    for (const ma::AdapterListing& adapter : list.adapters) {
      document.push(toJson(adapter));
    }
    printJson(context.out, document);
  } else if (list.adapters.empty()) {
    explainNoAdapters(context.out);
  } else {
    printAdapters(context.out, list);
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
    printAdapters(context.out, made);
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
