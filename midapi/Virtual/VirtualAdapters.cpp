#include "midapi/Virtual/VirtualAdapters.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "midapi/FileSystem.h"
#include "midapi/FlashBackend.h"
#include "midapi/FlashListing.h"
#include "midapi/Hex.h"
#include "midapi/ImagePreparation.h"
#include "midapi/OptionRom.h"
#include "midapi/TemporaryFiles.h"
#include "midapi/Virtual/AdapterDescription.h"
#include "midapi/Virtual/AdapterFolder.h"
#include "midapi/Virtual/AdapterOutline.h"
#include "midapi/Virtual/AdapterUpdate.h"
#include "platform/Clock.h"
#include "platform/Texts.h"

namespace ma {
namespace {

constexpr const char* kAdvice = "repair the folder, or move it out of the adapters directory";

AdapterListing describe(const AdapterFolder& folder) {
  settleUpdate(nativeFileSystem(), folder);
  const AdapterState state = folder.state();
  AdapterListing listing = outlineOf(state.description);
  describeFlash(state.flash.view(), listing);
  return listing;
}

// A locally administered address that no other function has.
std::string macOf(const PortId& port) {
  const AdapterAddress& adapter = port.adapter;
  return "02:" + hexText(adapter.segment >> 8, 2) + ":" + hexText(adapter.segment & 0xFF, 2) + ":" +
         hexText(adapter.bus, 2) + ":" + hexText(adapter.device, 2) + ":" +
         hexText(port.function, 2);
}

AdapterDescription describeNew(const AdapterSpec& spec, const RomChain& rom) {
  AdapterDescription description;
  description.name = spec.name;
  description.pci = spec.pci;
  description.vendor = spec.vendor;
  description.device = spec.device;
  description.writeRate = spec.writeRate;
  BootType bootType = BootType::None;
  for (const OptionRomImage& image : rom.images) {
    if (isFirmwareOf({spec.vendor, spec.device, true}, image)) {
      description.capabilityWord |= std::uint32_t{1} << static_cast<std::int32_t>(image.type);
      bootType = image.type == utils::FirmwareType::Pxe ? BootType::Pxe : bootType;
    }
  }
  for (unsigned function = 0; function < spec.ports; ++function) {
    const PortId port{spec.pci, static_cast<std::uint8_t>(function)};
    description.ports.push_back({port.function, macOf(port), bootType});
  }
  return description;
}

ConstBytes bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// Returns whether a name is that of an adapter's folder behind the dot that hides one in the
// making.
bool isHiddenFolderName(const std::string& name) {
  return name.starts_with('.') && parseFolderName(std::string_view(name).substr(1)).has_value();
}

// Builds the folder under a name that is no adapter's, then gives it its own.
void createAdapterFolder(FileSystem& files, const std::filesystem::path& directory,
                         const AdapterAddress& address, const AdapterDescription& description,
                         ConstBytes rom) {
  files.createFolders(directory);
  const std::filesystem::path lockPath = directory / ".adapters.lock";
  const auto lock = waitForLock(files, lockPath, platform::steadyClock());
  if (lock == nullptr) {
    throw AdapterFault("Adapter " + toString(address) +
                       " was not made: another program is making one (" +
                       platform::toShownText(lockPath) + "). Try again when it is done.");
  }
  sweepTemporaryFolders(files, directory, isHiddenFolderName);
  const std::string name = toFolderName(address);
  TemporaryPath temporary(files, temporaryName(directory / ("." + name)));
  files.createFolder(temporary.path());
  writeNewFile(files, temporary.path() / "adapter.json", bytesOf(formatDescription(description)));
  writeNewFile(files, temporary.path() / "flash.rom", rom);
  files.syncFolder(temporary.path());
  putInPlace(files, temporary, directory / name);
}

}  // namespace

VirtualAdapters::VirtualAdapters() : VirtualAdapters(adaptersDirectory()) {}

VirtualAdapters::VirtualAdapters(std::filesystem::path directory)
    : m_directory(std::move(directory)) {}

AdapterList VirtualAdapters::list() const {
  AdapterList result;
  AdapterFolders folders;
  try {
    folders = listAdapterFolders(nativeFileSystem(), m_directory);
  } catch (const FlashFault& fault) {
    throw AdapterFault(std::string(fault.what()) +
                       ". Check the adapters directory (ORVEX_ADAPTERS).");
  }
  for (const AdapterAddress& address : folders.addresses) {
    try {
      result.adapters.push_back(describe({nativeFileSystem(), m_directory, address}));
    } catch (const FlashFault& fault) {
      result.problems.push_back(
          {platform::toShownText(m_directory / toFolderName(address)), fault.what(), kAdvice});
    }
  }
  std::sort(folders.strangers.begin(), folders.strangers.end());
  for (const std::filesystem::path& name : folders.strangers) {
    if (name.native().front() != '.') {
      result.problems.push_back({platform::toShownText(m_directory / name),
                                 "The folder's name is no adapter address like 0000-03-00",
                                 kAdvice});
    }
  }
  return result;
}

void VirtualAdapters::add(const AdapterSpec& spec) const {
  const std::string address = toString(spec.pci);
  if (spec.ports < 1 || spec.ports > kMaxPorts) {
    throw AdapterFault("Adapter " + address + " cannot have " + std::to_string(spec.ports) +
                       " ports. Give a number from 1 to " + std::to_string(kMaxPorts) + ".");
  }
  FileSystem& files = nativeFileSystem();
  const std::filesystem::path folder = m_directory / toFolderName(spec.pci);
  try {
    if (files.exists(folder)) {
      throw AdapterFault("Adapter " + address + " exists already (" +
                         platform::toShownText(folder) +
                         "). Choose another address, or remove that folder first.");
    }
    const FileBytes rom = files.read(spec.rom, kMaxFlash);
    const RomChain chain = parseRomChain(rom.view());
    if (!chain.isValid()) {
      throw AdapterFault("The file " + platform::toShownText(spec.rom) +
                         " is no valid chain of PCI Expansion ROM images: " +
                         chain.defect->toString() + ". Give a file with undamaged images.");
    }
    createAdapterFolder(files, m_directory, spec.pci, describeNew(spec, chain), rom.view());
  } catch (const DescriptionFault& fault) {
    throw AdapterFault("Adapter " + address +
                       " was not made, for its description cannot be kept: " + fault.what() +
                       ". Give a shorter name.");
  } catch (const FileFault& fault) {
    throw AdapterFault("Adapter " + address + " was not made: " + fault.what() +
                       ". Check the path and its permissions.");
  }
}

}  // namespace ma
