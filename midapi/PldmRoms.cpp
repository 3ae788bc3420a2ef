#include "midapi/PldmRoms.h"

namespace ma {

std::vector<PldmRom> findOptionRoms(const PldmPackage& package, RomBytes bytes) {
  std::vector<PldmRom> roms;
  for (std::size_t index = 0; index < package.components.size(); ++index) {
    const PldmComponent& component = package.components[index];
    const RomBytes content = bytes.subspan(component.location, component.size);
    if (isOptionRom(content)) {
      roms.push_back({index, parseRomChain(content)});
    }
  }
  return roms;
}

std::vector<utils::FirmwareVersionInfo> firmwareOf(const RomChain& chain) {
  std::vector<utils::FirmwareVersionInfo> firmware;
  for (const OptionRomImage& image : chain.images) {
    if (image.type != utils::FirmwareType::None) {
      firmware.push_back({image.type, image.version});
    }
  }
  return firmware;
}

}  // namespace ma
