#include "midapi/FirmwareDescription.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

#include "midapi/Digest.h"
#include "midapi/Hex.h"
#include "midapi/OptionRom.h"
#include "midapi/PciIds.h"
#include "midapi/PldmMatch.h"
#include "midapi/PldmNames.h"
#include "midapi/PldmPackage.h"
#include "midapi/PldmRoms.h"

namespace ma {
namespace {

constexpr std::size_t kIdDigits = 4;

// An adapter's ROM is read when the machine starts.
constexpr const char* kRomActivation = "system reboot";

// By the code types of the PCI Data Structure.
constexpr std::string_view kCodeTypes[] = {"PC BIOS code", "Open Firmware code", "HP PA-RISC code",
                                           "EFI driver"};

// Of an option ROM, where 0 is an id like any other.
std::string toExactText(const PciIds& ids) {
  return hexText(ids.vendor, kIdDigits) + ":" + hexText(ids.device, kIdDigits);
}

// Lists each device once. A file may name millions: no more are looked at than are needed to know
// that not all can be listed.
class DeviceLister {
 public:
  using ToText = std::string (*)(const PciIds& ids);

  DeviceLister(FirmwareDescription& description, ToText toText)
      : m_description(description), m_toText(toText) {}

  // Returns false when no more can be listed.
  bool add(const PciIds& ids) {
    const bool isNew =
        m_listed.emplace(ids.vendor, ids.device, ids.subsystemVendor, ids.subsystemDevice).second;
    if (isNew && m_description.devices.size() == FirmwareDescription::kMostListed) {
      m_description.hasMoreDevices = true;
      return false;
    }
    if (isNew) {
      m_description.devices.push_back(m_toText(ids));
    }
    return true;
  }

 private:
  FirmwareDescription& m_description;
  const ToText m_toText;
  std::set<std::tuple<std::uint16_t, std::uint16_t, std::uint16_t, std::uint16_t>> m_listed;
};

void addComponent(FirmwareDescription& description, FirmwareComponent component) {
  if (description.components.size() < FirmwareDescription::kMostListed) {
    description.components.push_back(std::move(component));
  } else {
    description.hasMoreComponents = true;
  }
}

void addFirstOfType(std::vector<utils::FirmwareVersionInfo>& images,
                    const utils::FirmwareVersionInfo& image) {
  const bool isKnown = std::any_of(images.begin(), images.end(), [&image](const auto& known) {
    return known.type == image.type;
  });
  if (!isKnown) {
    images.push_back(image);
  }
}

// Returns the version of the images; one for each type where the types differ in it.
std::string joinVersions(const std::vector<utils::FirmwareVersionInfo>& images) {
  const bool isOneVersion =
      std::all_of(images.begin(), images.end(), [&images](const utils::FirmwareVersionInfo& image) {
        return image.version == images.front().version;
      });
  std::string joined = images.front().version.toString();
  for (std::size_t index = 1; !isOneVersion && index < images.size(); ++index) {
    joined += "+" + images[index].version.toString();
  }
  return joined;
}

std::string describeCodeType(std::uint8_t codeType) {
  return codeType < std::size(kCodeTypes) ? std::string(kCodeTypes[codeType])
                                          : "code type 0x" + hexText(codeType, 1);
}

FirmwareComponent describeImage(const OptionRomImage& image, std::size_t index) {
  FirmwareComponent component;
  component.classification = describeCodeType(image.codeType);
  component.version = image.version.toString();
  component.size = image.length;
  component.activation = kRomActivation;
  if (image.type == utils::FirmwareType::None) {
    component.name = "image " + std::to_string(index);
  } else {
    component.name = utils::firmwareTypeName(image.type);
    component.images.push_back({image.type, image.version});
  }
  return component;
}

void listDevices(const RomChain& chain, FirmwareDescription& description) {
  DeviceLister devices(description, toExactText);
  for (const OptionRomImage& image : chain.images) {
    bool isGoingOn = devices.add({image.vendor, image.device, 0, 0});
    for (std::size_t index = 0; isGoingOn && index < image.deviceList.size(); ++index) {
      isGoingOn = devices.add({image.vendor, image.deviceList[index], 0, 0});
    }
    if (!isGoingOn) {
      return;
    }
  }
}

void describeRom(std::span<const std::uint8_t> bytes, FirmwareDescription& description) {
  const RomChain chain = parseRomChain(bytes);
  if (!chain.isValid()) {
    description.problem = chain.defect->toString();
    return;
  }
  description.tellsDevices = true;
  listDevices(chain, description);
  std::vector<utils::FirmwareVersionInfo> all;
  for (const OptionRomImage& image : chain.images) {
    addFirstOfType(all, {image.type, image.version});
    addComponent(description, describeImage(image, description.components.size()));
  }
  description.version = joinVersions(all);
  std::erase_if(all, [](const auto& image) { return image.type == utils::FirmwareType::None; });
  description.images = std::move(all);
}

void describeComponents(const PldmPackage& package, const std::vector<PldmRom>& roms,
                        FirmwareDescription& description) {
  auto rom = roms.begin();
  for (std::size_t index = 0; index < package.components.size(); ++index) {
    const PldmComponent& component = package.components[index];
    FirmwareComponent described{describeComponent(component.identifier),
                                describeClassification(component.classification),
                                component.version,
                                component.size,
                                describeActivation(component.activation),
                                {}};
    if (rom != roms.end() && rom->component == index) {
      for (const utils::FirmwareVersionInfo& image : firmwareOf(rom->chain)) {
        addFirstOfType(described.images, image);
        addFirstOfType(description.images, image);
      }
      ++rom;
    }
    addComponent(description, std::move(described));
  }
}

// A package is written as it is, so a ROM in it must be one that an adapter can use.
std::string findRomDefect(const PldmPackage& package, const std::vector<PldmRom>& roms) {
  const auto damaged = std::find_if(roms.begin(), roms.end(),
                                    [](const PldmRom& rom) { return !rom.chain.isValid(); });
  if (damaged == roms.end()) {
    return {};
  }
  const PldmComponent& component = package.components[damaged->component];
  return describeComponent(component.identifier) + " at 0x" + hexText(component.location, 1) +
         " is a damaged option ROM: " + damaged->chain.defect->toString();
}

void describePackage(std::span<const std::uint8_t> bytes, FirmwareDescription& description) {
  const PldmPackage package = parsePldmPackage(bytes);
  if (!package.isValid()) {
    description.problem = package.defect->toString();
    return;
  }
  const std::vector<PldmRom> roms = findOptionRoms(package, bytes);
  description.problem = findRomDefect(package, roms);
  if (!description.problem.empty()) {
    return;
  }
  description.version = package.version;
  description.releaseTime = package.releaseTime ? package.releaseTime->toString() : std::string();
  description.protectsComponents = package.payloadChecksum.has_value();
  description.kernelRefusal = kernelRefusalOf(package);
  description.tellsDevices =
      !package.devices.empty() &&
      std::all_of(package.devices.begin(), package.devices.end(), namesDevice);
  DeviceLister devices(description, describeIds);
  for (const PldmRecord& record : package.devices) {
    if (!devices.add(idsOf(record))) {
      break;
    }
  }
  describeComponents(package, roms, description);
}

}  // namespace

FirmwareDescription describeFirmware(std::span<const std::uint8_t> bytes) {
  FirmwareDescription description;
  description.format = firmwareFormatOf(bytes);
  description.formatName = nameOf(description.format);
  description.size = bytes.size();
  description.digest = digestOf(bytes);
  for (const std::string_view driver : driversOf(description.format)) {
    description.drivers.emplace_back(driver);
  }
  if (bytes.empty()) {
    description.problem = "the file is empty";
  } else if (description.format == FirmwareFormat::OptionRom) {
    describeRom(bytes, description);
  } else if (description.format == FirmwareFormat::PldmPackage) {
    describePackage(bytes, description);
  }
  return description;
}

}  // namespace ma
