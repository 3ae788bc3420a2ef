#include "midapi/ChainFlashBackend.h"

#include "midapi/Digest.h"
#include "midapi/OptionRom.h"

namespace ma {
namespace {

std::vector<utils::FirmwareType> typesOf(const std::vector<utils::FirmwareVersionInfo>& firmware) {
  std::vector<utils::FirmwareType> types;
  types.reserve(firmware.size());
  for (const utils::FirmwareVersionInfo& component : firmware) {
    types.push_back(component.type);
  }
  return types;
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

// A flash that is written as a whole is the old one or the new one.
std::vector<std::string> ChainFlashBackend::interruptedWrites() {
  return {};
}

bool ChainFlashBackend::isUpdatable(const PortId& port) {
  return facts(port).isUpdatable;
}

std::vector<utils::FirmwareVersionInfo> ChainFlashBackend::installedFirmware(const PortId& port) {
  return firmwareOf(facts(port), parseRomChain(readFlash(port).view()));
}

// The flash itself says all there is to say.
std::vector<FirmwareVersions> ChainFlashBackend::firmwareVersions(const PortId& /*port*/) {
  return {};
}

Preparation ChainFlashBackend::prepare(const PortId& port, ConstBytes file,
                                       std::span<std::uint8_t> buffer,
                                       const std::vector<utils::FirmwareType>& types) {
  const RomChain chain = parseRomChain(file);
  if (!chain.isValid()) {
    return {PrepareStatus::InvalidImage};
  }
  const AdapterFacts adapter = facts(port);
  if (const PrepareStatus status = checkAdapter(chain, adapter); status != PrepareStatus::Ok) {
    return {status};
  }
  const FileBytes flash = readFlash(port);
  const ImageSelection selection = selectImages(chain, parseRomChain(flash.view()), adapter, types);
  const auto size = copyImages(file, selection.images, buffer);
  if (!size) {
    return {PrepareStatus::InternalFault};
  }
  return {selection.status, *size};
}

ImageComparison ChainFlashBackend::compare(const PortId& port, ConstBytes file) {
  FileBytes image(file.size());
  const Preparation preparation = prepare(port, file, image.writable(), {});
  if (preparation.status != PrepareStatus::Ok) {
    return comparisonOf(preparation.status);
  }
  return compareImages(facts(port), image.view().first(preparation.filled), readFlash(port).view());
}

std::uint64_t ChainFlashBackend::digestFlash(const PortId& port) {
  return digestOf(readFlash(port).view());
}

std::uint64_t ChainFlashBackend::digest(const PortId& port) {
  const AdapterFacts adapter = facts(port);
  const auto low = [](int number) { return static_cast<std::uint8_t>(number & 0xFF); };
  const std::uint8_t decisive[] = {low(adapter.vendor), low(adapter.vendor >> 8),
                                   low(adapter.device), low(adapter.device >> 8),
                                   low(adapter.isUpdatable ? 1 : 0)};
  return digestOf(decisive, digestFlash(port));
}

void ChainFlashBackend::recordInstalled(const PortId& port,
                                        const std::vector<utils::FirmwareType>& types) {
  std::uint32_t word = capabilityWordOf(types);
  if (word == 0) {
    word = capabilityWordOf(
        typesOf(firmwareOf(facts(port), parseRomChain(readFlashToBe(port).view()))));
  }
  setCapabilityWord(port, word);
}

Activation ChainFlashBackend::activate(const AdapterAddress& adapter) {
  if (!hasAdapter(adapter)) {
    throw FlashFault(FlashError::UnknownAdapter, toString(adapter));
  }
  return {true, "what its flash holds is in force"};
}

}  // namespace ma
