#include "midapi/MidApi.h"

#include <span>

#include "midapi/AdapterId.h"
#include "midapi/FlashBackend.h"
#include "midapi/ImagePreparation.h"
#include "midapi/OptionRom.h"
#include "midapi/VirtualFlashBackend.h"
#include "midapi/WriteProgress.h"

namespace ma {
namespace {

// Both live as long as the process: job threads may still ask while it exits.
FlashBackend& backend() {
  static FlashBackend& theBackend = *new VirtualFlashBackend(nativeFileSystem(), adaptersDirectory);
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

std::vector<utils::FirmwareVersionInfo> installedFirmware(const PortId& port) {
  const AdapterFacts facts = backend().facts(port);
  const FileBytes flash = backend().readFlash(port);
  std::vector<utils::FirmwareVersionInfo> versions;
  for (const OptionRomImage& image : parseRomChain(flash.view()).images) {
    if (isFirmwareOf(facts, image)) {
      versions.push_back({image.type, image.version});
    }
  }
  return versions;
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

bool getCanBeUpdated(const std::string& adapter) {
  try {
    return backend().facts(needPort(adapter)).isUpdatable;
  } catch (const FlashFault&) {
    return false;
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
  const RomBytes fileBytes(file, fileSize);
  const RomChain chain = parseRomChain(fileBytes);
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
    const auto filled = copyImages(fileBytes, selection.images, buffer);
    if (!filled) {
      return PrepareStatus::InternalFault;
    }
    imageSize = *filled;
    return selection.status;
  } catch (const FlashFault&) {
    return PrepareStatus::InternalFault;
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
      types.clear();
      for (const utils::FirmwareVersionInfo& installed : installedFirmware(port)) {
        types.push_back(installed.type);
      }
      word = capabilityWordOf(types);
    }
    backend().setCapabilityWord(port, word);
  });
}

}  // namespace ma
