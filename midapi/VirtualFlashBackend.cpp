#include "midapi/VirtualFlashBackend.h"

#include <algorithm>
#include <utility>

#include "midapi/FlashWrite.h"
#include "midapi/Texts.h"

namespace ma {
namespace {

// Returns the description of the port's adapter; a port that it does not list is unknown.
AdapterDescription describePort(const AdapterFolder& folder, const PortId& port) {
  AdapterDescription description = folder.description();
  if (description.findPort(port.function) == nullptr) {
    throw FlashFault(
        FlashError::UnknownAdapter,
        toString(port) + " (" + toShownText(folder.descriptionPath()) + " lists no such function)");
  }
  return description;
}

}  // namespace

VirtualFlashBackend::VirtualFlashBackend(FileSystem& files,
                                         std::function<std::filesystem::path()> directory)
    : m_files(files), m_directory(std::move(directory)) {}

utils::StringArray VirtualFlashBackend::enumerateAdapters() {
  const std::filesystem::path directory = m_directory();
  utils::StringArray identifiers;
  for (const AdapterAddress& address : listAdapterFolders(m_files, directory)) {
    try {
      const AdapterDescription description =
          AdapterFolder(m_files, directory, address).description();
      for (const PortDescription& port : description.ports) {
        identifiers.push_back(toString(PortId{address, port.function}));
      }
    } catch (const FlashFault&) {
      // The command line's list of adapters tells what is wrong with this one.
      continue;
    }
  }
  return identifiers;
}

AdapterFacts VirtualFlashBackend::facts(const PortId& port) {
  const AdapterDescription description = describePort(folderOf(port), port);
  return {description.vendor, description.device, description.isUpdatable};
}

FileBytes VirtualFlashBackend::readFlash(const PortId& port) {
  return folderOf(port).flash();
}

void VirtualFlashBackend::setBootType(const PortId& port, BootType bootType) {
  const AdapterFolder folder = folderOf(port);
  const std::lock_guard lock(m_descriptionMutex);
  static_cast<void>(describePort(folder, port));
  folder.storeBootType(port.function, bootType);
}

void VirtualFlashBackend::writeFlash(const PortId& port, ConstBytes image,
                                     WriteProgress& progress) {
  const AdapterFolder folder = folderOf(port);
  const AdapterDescription description = describePort(folder, port);
  FlashWrite(m_files, folder, description, image, progress).run();
}

void VirtualFlashBackend::setCapabilityWord(const PortId& port, std::uint32_t word) {
  const AdapterFolder folder = folderOf(port);
  const std::lock_guard lock(m_descriptionMutex);
  const AdapterDescription description = describePort(folder, port);
  if (description.capabilityWordFault) {
    throw FlashFault(description.capabilityWordFault->code, description.capabilityWordFault->text);
  }
  folder.storeCapabilityWord(word);
}

AdapterFolder VirtualFlashBackend::folderOf(const PortId& port) const {
  return {m_files, m_directory(), port.adapter};
}

std::vector<AdapterAddress> listAdapterFolders(FileSystem& files,
                                               const std::filesystem::path& directory,
                                               std::vector<std::filesystem::path>* strangers) {
  std::vector<std::filesystem::path> names;
  try {
    names = files.folders(directory);
  } catch (const FileFault& fault) {
    if (fault.isMissingFile()) {
      return {};
    }
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
  std::vector<AdapterAddress> addresses;
  for (std::filesystem::path& name : names) {
    const std::string shown = toShownText(name);
    // The text of another name may look like an address.
    if (const auto address = parseFolderName(shown); address && name == shown) {
      addresses.push_back(*address);
    } else if (strangers != nullptr) {
      strangers->push_back(std::move(name));
    }
  }
  std::sort(addresses.begin(), addresses.end());
  return addresses;
}

}  // namespace ma
