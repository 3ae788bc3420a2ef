#include "cli/ShowCommand.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "cli/AdapterWords.h"
#include "cli/AdaptersList.h"
#include "cli/Command.h"
#include "cli/ImageFile.h"
#include "cli/JsonOutput.h"
#include "cli/Session.h"
#include "cli/ShownFirmware.h"
#include "client/Fault.h"
#include "host/SharedOptions.h"
#include "midapi/MidApi.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "Tells by the content of FILE, not by its name: its format, the devices that it is for, its\n"
    "components and versions, and what makes them take effect; whether it is damaged, and where;\n"
    "which drivers of the kernel take such files. Nothing is installed.\n"
    "\n"
    "STATE says what the file is to each adapter of this machine, as in 'quorvel identities':\n"
    "  newer, older   of a newer or an older version than what is installed\n"
    "  same           the bytes that are installed\n"
    "  same version   the installed version in other bytes\n"
    "  other types    its image types are not those installed\n"
    "  not updatable  the firmware of the adapter cannot be replaced\n"
    "  not for it     made for other devices, damaged, or of a format that is none for it\n"
    "  unknown        the adapter could not be read\n"
    "\n"
    "With --json: {\"file\", \"format\", \"problem\", \"version\", \"devices\", \"types\",\n"
    "\"components\", \"drivers\", \"adapters\": [{\"adapter\", \"name\", \"state\", \"reason\"}],\n"
    "...}; what the file does not tell is null.\n"
    "\n"
    "Examples:\n"
    "  quorvel show firmware.rom\n"
    "  quorvel show /srv/firmware/firmware.rom --json\n";

// Returns why a file is not for an adapter where the library leaves that to its reader.
std::string explainMismatch(const ma::AdapterListing& adapter,
                            const ma::FirmwareDescription& description) {
  if (!description.problem.empty()) {
    return "the file is damaged";
  }
  if (adapter.kind == ma::AdapterKind::Virtual &&
      description.format != ma::FirmwareFormat::OptionRom) {
    return "virtual adapters take option ROMs alone";
  }
  return "it is " + toDeviceText(adapter) + ", which the file does not name";
}

AdapterVerdict judge(const ma::AdapterListing& adapter, std::span<const std::uint8_t> file,
                     const ma::FirmwareDescription& description) {
  const std::string& port = adapter.ports.front().identifier;
  const auto size = static_cast<std::uint32_t>(file.size());
  AdapterVerdict verdict;
  verdict.adapter = adapter.pci;
  verdict.name = adapter.name;
  verdict.comparison = ma::compareFlashImage(port, file.data(), size);
  verdict.reason = ma::explainFlashImage(port, file.data(), size, {});
  if (verdict.reason.empty() && verdict.comparison == ma::ImageComparison::NotForAdapter) {
    verdict.reason = explainMismatch(adapter, description);
  }
  return verdict;
}

ExitStatus show(const Context& context, const std::string& path) {
  if (!context.options.host.empty()) {
    throw client::Fault("'show' does not go with --host: it reads a file of this machine",
                        client::Fault::Kind::Usage);
  }
  demandConsistent(context.options);
  applyOptions(context.options);
  const ImageFile file(path);
  ShownFirmware firmware{path, ma::describeFirmware(file.bytes()), {}};
  const ma::AdapterList list = ma::listAdapters();
  warnAboutAdapters(context.err, list);
  for (const ma::AdapterListing& adapter : list.adapters) {
    if (!adapter.ports.empty()) {
      firmware.adapters.push_back(judge(adapter, file.bytes(), firmware.description));
    }
  }
  if (context.options.isJson) {
    printJson(context.out, toJson(firmware));
  } else {
    printFirmware(context.out, firmware);
  }
  return ExitStatus::Done;
}

}  // namespace

void addShowCommand(CLI::App& program, Context& context) {
  Command command(program, "show", "Show what a firmware file is, and is to each adapter");
  const auto path = std::make_shared<std::string>();
  command.add({"FILE", "Firmware file", "", true, host::refuseEmpty}, *path);
  command.setFooter(kFooter);
  command.onChosen(
      [&context, path] { context.command = [&context, path] { return show(context, *path); }; });
}

}  // namespace cli
