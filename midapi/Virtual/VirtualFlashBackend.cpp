#include "midapi/Virtual/VirtualFlashBackend.h"

#include <utility>

#include "midapi/FlashListing.h"
#include "midapi/Virtual/AdapterOutline.h"
#include "midapi/Virtual/VirtualAdapters.h"
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

// Returns what the description is with an update that is decided and may not be done yet.
AdapterDescription settledDescription(FileSystem& files, const AdapterFolder& folder,
                                      const AdapterDescription& placed) {
  try {
    settleUpdate(files, folder);
    return folder.state().description;
  } catch (const FlashFault&) {
    return placed;  // an update says what is wrong with the journal
  }
}

void addFlash(const AdapterFolder& folder, AdapterListing& listing) {
  try {
    describeFlash(folder.flash().view(), listing);
  } catch (const FlashFault& fault) {
    listing.flashDefect = fault.what();
  }
}

}  // namespace

VirtualFlashBackend::VirtualFlashBackend(FileSystem& files,
                                         std::function<std::filesystem::path()> directory,
                                         platform::Clock& clock)
    : m_files(files), m_directory(std::move(directory)), m_clock(clock), m_cache(files) {}

std::string VirtualFlashBackend::describe(const AdapterAddress& adapter) {
  return "a virtual adapter (" + platform::toShownText(folderOf(adapter).path()) + ")";
}

bool VirtualFlashBackend::hasAdapter(const AdapterAddress& adapter) {
  return folderOf(adapter).hasDescription();
}

utils::StringArray VirtualFlashBackend::enumerateAdapters() {
  return m_cache.ports(m_directory());
}

AdapterList VirtualFlashBackend::list() {
  return VirtualAdapters(m_directory()).list();
}

AdapterList VirtualFlashBackend::outline(OutlineDepth depth) {
  const std::filesystem::path directory = m_directory();
  AdapterList list;
  for (const auto& description : m_cache.descriptions(directory)) {
    const AdapterFolder folder(m_files, directory, description->pci);
    AdapterListing listing = outlineOf(m_files.exists(folder.journalPath())
                                           ? settledDescription(m_files, folder, *description)
                                           : *description);
    if (depth == OutlineDepth::Flash) {
      addFlash(folder, listing);
    }
    list.adapters.push_back(std::move(listing));
  }
  return list;
}

AdapterFacts VirtualFlashBackend::facts(const PortId& port) {
  const std::filesystem::path directory = m_directory();
  const auto description = m_cache.description(directory, port.adapter);
  demandPort(*description, {m_files, directory, port.adapter}, port);
  return {description->vendor, description->device, description->isUpdatable};
}

FileBytes VirtualFlashBackend::readFlash(const PortId& port) {
  const AdapterFolder folder = folderOf(port.adapter);
  settleUpdate(m_files, folder);
  return folder.flash();
}

bool VirtualFlashBackend::beginUpdate(const AdapterAddress& adapter) {
  const platform::Lock lock(m_mutex);
  return m_updates.try_emplace(adapter).second;
}

void VirtualFlashBackend::endUpdate(const AdapterAddress& adapter) noexcept {
  std::shared_ptr<AdapterUpdate> update;
  const platform::Lock lock(m_mutex);
  if (const auto found = m_updates.find(adapter); found != m_updates.end()) {
    update = std::move(found->second);
    m_updates.erase(found);
  }
}

FileBytes VirtualFlashBackend::readFlashToBe(const PortId& port) {
  std::shared_ptr<AdapterUpdate> update;
  {
    const platform::Lock lock(m_mutex);
    if (const auto found = m_updates.find(port.adapter); found != m_updates.end()) {
      update = found->second;
    }
  }
  return update != nullptr ? update->flashToBe() : readFlash(port);
}

std::uint64_t VirtualFlashBackend::digestFlash(const PortId& port) {
  const std::filesystem::path directory = m_directory();
  settleUpdate(m_files, {m_files, directory, port.adapter});
  return m_cache.flashDigest(directory, port.adapter);
}

void VirtualFlashBackend::setBootType(const PortId& port, BootType bootType) {
  const AdapterFolder folder = folderOf(port.adapter);
  const platform::Lock lock(m_mutex);
  static_cast<void>(describePort(folder, port));
  if (const auto running = runningUpdate(port)) {
    running->setBootType(port.function, bootType);
    return;
  }
  AdapterUpdate update(m_files, folder, m_clock);
  update.setBootType(port.function, bootType);
  update.commit();
}

void VirtualFlashBackend::writeFlash(const PortId& port, ConstBytes image,
                                     WriteProgress& progress) {
  const AdapterFolder folder = folderOf(port.adapter);
  if (!describePort(folder, port).isUpdatable) {
    throw FlashFault(FlashError::NotUpdatable, toString(port));
  }
  if (image.size() > kMaxFlash) {
    throw FlashFault(FlashError::ImageTooLarge,
                     toString(port) + " takes " + std::to_string(kMaxFlash) +
                         " bytes, and the image has " + std::to_string(image.size()));
  }
  std::shared_ptr<AdapterUpdate> running;
  {
    const platform::Lock lock(m_mutex);
    running = runningUpdate(port);
  }
  if (running != nullptr) {
    running->writeFlash(image, progress);
  } else {
    AdapterUpdate update(m_files, folder, m_clock);
    update.writeFlash(image, progress);
    update.commit();
  }
  progress.complete();
}

void VirtualFlashBackend::setCapabilityWord(const PortId& port, std::uint32_t word) {
  const AdapterFolder folder = folderOf(port.adapter);
  const platform::Lock lock(m_mutex);
  const AdapterDescription description = describePort(folder, port);
  if (description.capabilityWordFault) {
    throw FlashFault(description.capabilityWordFault->code, description.capabilityWordFault->text);
  }
  auto update = runningUpdate(port);
  if (update == nullptr) {
    update = std::make_shared<AdapterUpdate>(m_files, folder, m_clock);
  }
  update->setCapabilityWord(word);
  update->commit();
}

// Returns null where no update has begun.
std::shared_ptr<AdapterUpdate> VirtualFlashBackend::runningUpdate(const PortId& port) {
  const auto found = m_updates.find(port.adapter);
  if (found == m_updates.end()) {
    return nullptr;
  }
  if (found->second == nullptr) {
    found->second = std::make_shared<AdapterUpdate>(m_files, folderOf(port.adapter), m_clock);
  }
  return found->second;
}

AdapterFolder VirtualFlashBackend::folderOf(const AdapterAddress& adapter) const {
  return {m_files, m_directory(), adapter};
}

}  // namespace ma
