#include "midapi/MidApi.h"

#include <algorithm>
#include <span>
#include <utility>

#include "midapi/AdapterId.h"
#include "midapi/Digest.h"
#include "midapi/FlashBackend.h"
#include "midapi/Hex.h"
#include "midapi/ImagePreparation.h"
#include "midapi/OptionRom.h"
#include "midapi/VirtualFlashBackend.h"
#include "midapi/WriteProgress.h"
#include "platform/Clock.h"
#include "platform/StayAwake.h"

namespace ma {
namespace {

// Both live as long as the process: job threads may still ask while it exits.
FlashBackend& backend() {
  static FlashBackend& theBackend =
      *new VirtualFlashBackend(nativeFileSystem(), adaptersDirectory, platform::steadyClock());
  return theBackend;
}

WriteProgressTable& progressTable() {
  static WriteProgressTable& theTable = *new WriteProgressTable;
  return theTable;
}

PortId needPort(const std::string& adapter) {
  const auto port = parseCanonicalPortId(adapter);
  if (!port) {
    throw FlashFault(FlashError::UnknownAdapter,
                     "\"" + adapter + "\" is no port identifier like \"0000:03:00.0\"");
  }
  return *port;
}

// Runs an operation that reports by code and text.
template <class Operation>
bool report(std::uint32_t& errorCode, std::string& errorText, Operation operation) {
  try {
    operation();
  } catch (const FlashFault& fault) {
    errorCode = fault.code();
    errorText = fault.what();
    return false;
  }
  errorCode = static_cast<std::uint32_t>(FlashError::None);
  errorText.clear();
  return true;
}

std::string toDeviceName(std::uint16_t vendor, std::uint16_t device) {
  return hexText(vendor, 4) + ":" + hexText(device, 4);
}

std::vector<utils::FirmwareVersionInfo> firmwareOf(const AdapterFacts& facts, RomBytes rom) {
  std::vector<utils::FirmwareVersionInfo> versions;
  for (const OptionRomImage& image : parseRomChain(rom).images) {
    if (isFirmwareOf(facts, image)) {
      versions.push_back({image.type, image.version});
    }
  }
  return versions;
}

std::vector<utils::FirmwareVersionInfo> installedFirmware(const PortId& port) {
  return firmwareOf(backend().facts(port), backend().readFlash(port).view());
}

// Returns the types of what the flash holds when the update is made that has begun, if any.
std::vector<utils::FirmwareType> typesToBe(const PortId& port) {
  std::vector<utils::FirmwareType> types;
  for (const utils::FirmwareVersionInfo& component :
       firmwareOf(backend().facts(port), backend().readFlashToBe(port).view())) {
    types.push_back(component.type);
  }
  return types;
}

bool beginUpdate(const std::string& adapter) {
  const auto port = parseCanonicalPortId(adapter);
  return port && backend().beginUpdate(port->adapter);
}

// Fills `buffer` as prepareFlashImage does; `filled` is the number of bytes.
PrepareStatus prepare(const std::string& adapter, RomBytes file, std::span<std::uint8_t> buffer,
                      std::uint32_t& filled, const std::vector<utils::FirmwareType>& types) {
  const RomChain chain = parseRomChain(file);
  if (!chain.isValid()) {
    return PrepareStatus::InvalidImage;
  }
  try {
    const PortId port = needPort(adapter);
    const AdapterFacts facts = backend().facts(port);
    if (const PrepareStatus status = checkAdapter(chain, facts); status != PrepareStatus::Ok) {
      return status;
    }
    const FileBytes flash = backend().readFlash(port);
    const ImageSelection selection = selectImages(chain, parseRomChain(flash.view()), facts, types);
    const auto size = copyImages(file, selection.images, buffer);
    if (!size) {
      return PrepareStatus::InternalFault;
    }
    filled = *size;
    return selection.status;
  } catch (const FlashFault&) {
    return PrepareStatus::InternalFault;
  }
}

// Compares an image that may be installed with what the flash holds.
ImageComparison compareWithFlash(const PortId& port, RomBytes image) {
  const FileBytes flash = backend().readFlash(port);
  const RomBytes installed = flash.view().first(parseRomChain(flash.view()).length);
  if (std::ranges::equal(image, installed)) {
    return ImageComparison::SameContent;
  }
  const AdapterFacts facts = backend().facts(port);
  return firmwareOf(facts, image) == firmwareOf(facts, installed) ? ImageComparison::SameVersion
                                                                  : ImageComparison::Newer;
}

// Returns the capability word of a list of types; numbers that stand for no type add nothing to it.
std::uint32_t capabilityWordOf(const std::vector<utils::FirmwareType>& types) {
  std::uint32_t word = 0;
  for (const utils::FirmwareType type : types) {
    const auto number = static_cast<std::int32_t>(type);
    if (type > utils::FirmwareType::None && type <= utils::FirmwareType::Fcoe) {
      word |= std::uint32_t{1} << number;
    }
  }
  return word;
}

}  // namespace

utils::StringArray enumerateAdapters() {
  try {
    return backend().enumerateAdapters();
  } catch (const FlashFault&) {
    return {};
  }
}

void getAdapterFirmwareVersion(const std::string& adapter,
                               std::vector<utils::FirmwareVersionInfo>& versions) {
  versions.clear();
  try {
    versions = installedFirmware(needPort(adapter));
  } catch (const FlashFault&) {
    return;
  }
}

utils::PCIAddr getPCIAddress(const std::string& adapter) {
  const auto port = parseCanonicalPortId(adapter);
  return port ? utils::PCIAddr{port->adapter.bus, port->adapter.device, port->function}
              : utils::PCIAddr{};
}

bool isSameAdapter(const std::string& one, const std::string& other) {
  const auto port = parseCanonicalPortId(one);
  const auto otherPort = parseCanonicalPortId(other);
  return port && otherPort && port->adapter == otherPort->adapter;
}

bool getCanBeUpdated(const std::string& adapter) {
  try {
    return backend().facts(needPort(adapter)).isUpdatable;
  } catch (const FlashFault&) {
    return false;
  }
}

FlashUpdate::FlashUpdate(const std::string& adapter)
    : m_adapter(adapter), m_hasBegun(beginUpdate(adapter)) {}

FlashUpdate::~FlashUpdate() {
  if (const auto port = parseCanonicalPortId(m_adapter); port && m_hasBegun) {
    backend().endUpdate(port->adapter);
  }
}

bool setBootType(const std::string& adapter, BootType bootType) {
  if (bootType > BootType::Uefi) {
    return false;
  }
  try {
    backend().setBootType(needPort(adapter), bootType);
  } catch (const FlashFault&) {
    return false;
  }
  return true;
}

PrepareStatus prepareFlashImage(const std::string& adapter, const std::uint8_t* file,
                                std::uint32_t fileSize, std::uint8_t* image,
                                std::uint32_t& imageSize,
                                const std::vector<utils::FirmwareType>& types) {
  const std::span<std::uint8_t> buffer(image, imageSize);
  imageSize = 0;
  const PrepareStatus status = prepare(adapter, {file, fileSize}, buffer, imageSize, types);
  if (status == PrepareStatus::Ok || status == PrepareStatus::Downgrade ||
      status == PrepareStatus::TypesDiffer) {
    // Whoever prepares goes on to write, and watches from now on.
    static_cast<void>(progressTable().start(needPort(adapter).adapter));
  }
  return status;
}

std::string describeFlashImage(const std::uint8_t* file, std::uint32_t fileSize,
                               std::vector<FlashImageInfo>& images) {
  images.clear();
  const RomChain chain = parseRomChain({file, fileSize});
  if (!chain.isValid()) {
    return chain.defect->toString();
  }
  std::size_t devices = 0;
  for (const OptionRomImage& image : chain.images) {
    devices += 1 + image.deviceList.size();
  }
  if (devices > kMostDescribedDevices) {
    return "its images name " + std::to_string(devices) + " devices, more than " +
           std::to_string(kMostDescribedDevices);
  }
  for (const OptionRomImage& image : chain.images) {
    FlashImageInfo info{{image.type, image.version}, {toDeviceName(image.vendor, image.device)}};
    for (const std::uint16_t device : image.deviceList) {
      info.devices.push_back(toDeviceName(image.vendor, device));
    }
    images.push_back(std::move(info));
  }
  return {};
}

ImageComparison compareFlashImage(const std::string& adapter, const std::uint8_t* file,
                                  std::uint32_t fileSize) {
  FileBytes image(fileSize);
  std::uint32_t filled = 0;
  switch (prepare(adapter, {file, fileSize}, image.writable(), filled, {})) {
    case PrepareStatus::InvalidImage:
    case PrepareStatus::NotForAdapter:
      return ImageComparison::NotForAdapter;
    case PrepareStatus::NotUpdatable:
      return ImageComparison::NotUpdatable;
    case PrepareStatus::TypesDiffer:
      return ImageComparison::TypesDiffer;
    case PrepareStatus::Downgrade:
      return ImageComparison::Older;
    case PrepareStatus::InternalFault:
      return ImageComparison::Unknown;
    case PrepareStatus::Ok:
      break;
  }
  try {
    return compareWithFlash(needPort(adapter), image.view().first(filled));
  } catch (const FlashFault&) {
    return ImageComparison::Unknown;
  }
}

std::uint64_t digestAdapter(const std::string& adapter) {
  try {
    const PortId port = needPort(adapter);
    const AdapterFacts facts = backend().facts(port);
    const auto low = [](int number) { return static_cast<std::uint8_t>(number & 0xFF); };
    const std::uint8_t decisive[] = {low(facts.vendor), low(facts.vendor >> 8), low(facts.device),
                                     low(facts.device >> 8), low(facts.isUpdatable ? 1 : 0)};
    return digestOf(decisive, digestOf(backend().readFlash(port).view()));
  } catch (const FlashFault&) {
    return 0;
  }
}

bool writeFlashImage(const std::string& adapter, const std::uint8_t* image, std::uint32_t imageSize,
                     std::uint32_t& errorCode, std::string& errorText) {
  return report(errorCode, errorText, [&] {
    const PortId port = needPort(adapter);
    if (!backend().facts(port).isUpdatable) {
      throw FlashFault(FlashError::NotUpdatable, adapter);
    }
    if (imageSize == 0) {
      throw FlashFault(FlashError::EmptyImage, adapter + " keeps what it holds");
    }
    const platform::StayAwake awake;
    backend().writeFlash(port, {image, imageSize}, progressTable().start(port.adapter));
  });
}

std::uint32_t getFlashImageUpdateProgress(const std::string& adapter) {
  const auto port = parseCanonicalPortId(adapter);
  return port ? progressTable().percent(port->adapter) : 0;
}

bool updateCapabilityWord(const std::string& adapter, std::vector<utils::FirmwareType> types,
                          std::uint32_t& errorCode, std::string& errorText) {
  return report(errorCode, errorText, [&] {
    const PortId port = needPort(adapter);
    std::uint32_t word = capabilityWordOf(types);
    if (word == 0) {
      types = typesToBe(port);
      word = capabilityWordOf(types);
    }
    // In a FlashUpdate, the new image takes its place now.
    const platform::StayAwake awake;
    backend().setCapabilityWord(port, word);
  });
}

}  // namespace ma
