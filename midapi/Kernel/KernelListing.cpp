#include "midapi/Kernel/KernelListing.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <system_error>
#include <utility>

#include "midapi/FlashListing.h"
#include "midapi/PciVpd.h"

namespace ma {
namespace {

// By which the firmware as a whole is known where a driver tells one text alone.
constexpr const char* kFirmware = "fw";

bool isForbidden(int error) {
  return error == EACCES || error == EPERM;
}

FirmwareVersions& versionsUnder(std::vector<FirmwareVersions>& versions, const std::string& name) {
  auto found = std::ranges::find(versions, name, &FirmwareVersions::name);
  if (found == versions.end()) {
    found = versions.insert(versions.end(), {name, {}, {}});
  }
  return *found;
}

std::vector<FirmwareVersions> versionsOf(const DriverAnswer& answer) {
  std::vector<FirmwareVersions> versions;
  if (answer.devlink) {
    for (const NamedVersion& version : answer.devlink->running) {
      versionsUnder(versions, version.name).running = version.value;
    }
    for (const NamedVersion& version : answer.devlink->stored) {
      FirmwareVersions& stored = versionsUnder(versions, version.name);
      stored.stored = version.value;
      stored.isErased = version.value.empty();
    }
  }
  if (versions.empty() && answer.info && !answer.info->firmwareVersion.empty()) {
    versions.push_back({kFirmware, answer.info->firmwareVersion, {}});
  }
  return versions;
}

// Returns what the writer of the flash was told before it began.
std::vector<FirmwareVersions> versionsOf(const FlashEntry& entry) {
  DriverAnswer answer;
  answer.devlink = DevlinkInfo{"", "", "", {}, entry.running, entry.before};
  return versionsOf(answer);
}

// Returns the function, or else the first one that has something.
template <class Has>
const KernelFunction* findFunction(const KernelAdapter& adapter, std::uint8_t preferred, Has has) {
  const auto& functions = adapter.functions;
  auto found = std::ranges::find_if(functions, [&](const KernelFunction& function) {
    return function.pci.id.function == preferred && has(function);
  });
  if (found == functions.end()) {
    found = std::ranges::find_if(functions, has);
  }
  return found == functions.end() ? nullptr : &*found;
}

AdapterPort describePort(const KernelFunction& function) {
  AdapterPort port;
  port.identifier = toString(function.pci.id);
  for (const NetworkInterface& interface : function.pci.interfaces) {
    port.interfaces.push_back(interface.name);
    if (port.mac.empty()) {
      port.mac = interface.mac;
    }
  }
  port.link = function.pci.link;
  // What was last known of a link is not that of one that is down.
  if (port.link.state == PortState::Enabled && function.answer.speed.value_or(0) > 0) {
    port.link.speed = function.answer.speed;
  }
  return port;
}

// Functions come in order, and what the first one says counts.
void setOnce(std::string& text, std::string_view value) {
  if (text.empty()) {
    text = value;
  }
}

void addProduct(const KernelFunction& function, AdapterListing& listing) {
  if (const auto& devlink = function.answer.devlink) {
    setOnce(listing.serialNumber, devlink->serialNumber);
    setOnce(listing.serialNumber, devlink->boardSerialNumber);
  }
  const PciVpd vpd = parsePciVpd(function.answer.vpd.bytes);
  setOnce(listing.name, vpd.productName);
  setOnce(listing.partNumber, vpd.partNumber());
  setOnce(listing.serialNumber, vpd.serialNumber());
  setOnce(listing.driver, function.pci.driver);
}

// Returns the components that the flash does not hold as a whole: a driver that stores a version
// empties it before it writes.
std::vector<std::string> missingIn(const DriverAnswer& answer) {
  std::vector<std::string> names;
  if (answer.devlink) {
    for (const NamedVersion& version : answer.devlink->stored) {
      if (version.value.empty()) {
        names.push_back(version.name);
      }
    }
  }
  return names;
}

void addNotes(const KernelAdapter& adapter, AdapterListing& listing) {
  bool isRomForbidden = false;
  bool isVpdForbidden = false;
  std::set<std::string> notes;
  for (const KernelFunction& function : adapter.functions) {
    const DriverAnswer& answer = function.answer;
    isRomForbidden = isRomForbidden || isForbidden(answer.rom.error);
    isVpdForbidden = isVpdForbidden || isForbidden(answer.vpd.error);
    if (answer.error != 0) {
      notes.insert("its driver could not be asked: " +
                   std::generic_category().message(answer.error));
    }
    for (const std::string& name : missingIn(answer)) {
      notes.insert("its driver tells no stored version of " + name +
                   ": an update of it has not been finished; update it again");
    }
    if (answer.rom.error != 0 && !isForbidden(answer.rom.error)) {
      notes.insert("its option ROM cannot be read: " +
                   std::generic_category().message(answer.rom.error));
    }
  }
  if (isRomForbidden || isVpdForbidden) {
    listing.notes.push_back(std::string("not readable without root: ") +
                            (isRomForbidden ? "its option ROM" : "") +
                            (isRomForbidden && isVpdForbidden ? ", " : "") +
                            (isVpdForbidden ? "its part and serial number (VPD)" : ""));
  }
  std::ranges::copy(notes, std::back_inserter(listing.notes));
}

}  // namespace

std::vector<FirmwareVersions> versionsOf(const KernelAdapter& adapter, std::uint8_t function) {
  const auto tells = [](const KernelFunction& candidate) {
    return !versionsOf(candidate.answer).empty();
  };
  const KernelFunction* const found = findFunction(adapter, function, tells);
  if (found != nullptr) {
    return versionsOf(found->answer);
  }
  return adapter.noted ? versionsOf(*adapter.noted) : std::vector<FirmwareVersions>();
}

RomBytes romOf(const KernelAdapter& adapter, std::uint8_t function) {
  const KernelFunction* const found = findFunction(
      adapter, function,
      [](const KernelFunction& candidate) { return !candidate.answer.rom.bytes.empty(); });
  return found != nullptr ? RomBytes(found->answer.rom.bytes) : RomBytes();
}

bool isRomKnown(const KernelAdapter& adapter) {
  return !romOf(adapter, 0).empty() ||
         std::ranges::none_of(adapter.functions, [](const KernelFunction& function) {
           return function.pci.hasRom && function.answer.rom.error != 0;
         });
}

AdapterListing outlineKernelAdapter(const KernelAdapter& adapter, PciNames& names) {
  const KernelFunction& first = adapter.functions.front();
  AdapterListing listing;
  listing.kind = AdapterKind::Kernel;
  listing.pci = toString(adapter.address);
  listing.vendor = first.pci.ids.vendor;
  listing.device = first.pci.ids.device;
  listing.subsystemVendor = first.pci.ids.subsystemVendor;
  listing.subsystemDevice = first.pci.ids.subsystemDevice;
  listing.isBeingWritten = adapter.isBeingWritten;
  for (const KernelFunction& function : adapter.functions) {
    listing.ports.push_back(describePort(function));
    addProduct(function, listing);
  }
  if (listing.name.empty()) {
    listing.name = names.nameOf(listing.vendor, listing.device);
  }
  listing.versions = versionsOf(adapter, first.pci.id.function);
  return listing;
}

AdapterListing describeKernelAdapter(const KernelAdapter& adapter, PciNames& names) {
  AdapterListing listing = outlineKernelAdapter(adapter, names);
  describeFlash(romOf(adapter, adapter.functions.front().pci.id.function), listing);
  addNotes(adapter, listing);
  return listing;
}

}  // namespace ma
