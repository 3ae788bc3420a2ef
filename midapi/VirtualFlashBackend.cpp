#include "midapi/VirtualFlashBackend.h"

#include <string>
#include <utility>

#include "midapi/FlashWrite.h"
#include "platform/Texts.h"

namespace ma {
namespace {

// Refuses a port that the description of its adapter does not list.
void demandPort(const AdapterDescription& description, const AdapterFolder& folder,
                const PortId& port) {
  if (description.findPort(port.function) == nullptr) {
    throw FlashFault(FlashError::UnknownAdapter,
                     toString(port) + " (" + platform::toShownText(folder.descriptionPath()) +
                         " lists no such function)");
  }
}

// Returns the description of the port's adapter, read for whoever is about to change something.
AdapterDescription describePort(const AdapterFolder& folder, const PortId& port) {
  AdapterDescription description = folder.description();
  demandPort(description, folder, port);
  return description;
}

}  // namespace

VirtualFlashBackend::VirtualFlashBackend(FileSystem& files,
                                         std::function<std::filesystem::path()> directory,
                                         platform::Clock& clock)
    : m_files(files), m_directory(std::move(directory)), m_clock(clock), m_cache(files) {}

utils::StringArray VirtualFlashBackend::enumerateAdapters() {
  return m_cache.ports(m_directory());
}

AdapterFacts VirtualFlashBackend::facts(const PortId& port) {
  const std::filesystem::path directory = m_directory();
  const auto description = m_cache.description(directory, port.adapter);
  demandPort(*description, {m_files, directory, port.adapter}, port);
  return {description->vendor, description->device, description->isUpdatable};
}

FileBytes VirtualFlashBackend::readFlash(const PortId& port) {
  return folderOf(port).flash();
}

void VirtualFlashBackend::setBootType(const PortId& port, BootType bootType) {
  const AdapterFolder folder = folderOf(port);
  const platform::Lock lock(m_descriptionMutex);
  static_cast<void>(describePort(folder, port));
  folder.storeBootType(port.function, bootType);
}

void VirtualFlashBackend::writeFlash(const PortId& port, ConstBytes image,
                                     WriteProgress& progress) {
  const AdapterFolder folder = folderOf(port);
  const AdapterDescription description = describePort(folder, port);
  if (image.size() > kMaxFlash) {
    throw FlashFault(FlashError::ImageTooLarge,
                     toString(port) + " takes " + std::to_string(kMaxFlash) +
                         " bytes, and the image has " + std::to_string(image.size()));
  }
  FlashWrite(m_files, folder, description, image, progress, m_clock).run();
}

void VirtualFlashBackend::setCapabilityWord(const PortId& port, std::uint32_t word) {
  const AdapterFolder folder = folderOf(port);
  const platform::Lock lock(m_descriptionMutex);
  const AdapterDescription description = describePort(folder, port);
  if (description.capabilityWordFault) {
    throw FlashFault(description.capabilityWordFault->code, description.capabilityWordFault->text);
  }
  folder.storeCapabilityWord(word);
}

AdapterFolder VirtualFlashBackend::folderOf(const PortId& port) const {
  return {m_files, m_directory(), port.adapter};
}

}  // namespace ma
