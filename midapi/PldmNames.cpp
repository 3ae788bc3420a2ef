#include "midapi/PldmNames.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "midapi/Hex.h"

namespace ma {
namespace {

// By their numbers.
constexpr std::array<std::string_view, 14> kClassifications = {
    "unknown",
    "other",
    "driver",
    "configuration software",
    "application software",
    "instrumentation",
    "firmware/BIOS",
    "diagnostic software",
    "operating system",
    "middleware",
    "firmware",
    "BIOS/FCode",
    "support/service pack",
    "software bundle",
};
constexpr std::uint16_t kDownstreamDevice = 0xFFFF;

// By their bits.
constexpr std::array<std::string_view, 6> kActivations = {
    "automatic",     "self-contained", "medium-specific reset",
    "system reboot", "DC power cycle", "AC power cycle",
};
constexpr std::size_t kActivationBits = 16;

struct IdName {
  PldmDescriptorType type;
  std::string_view name;
};
constexpr std::array kPciIds = {
    IdName{PldmDescriptorType::PciVendor, "PCI vendor"},
    IdName{PldmDescriptorType::PciDevice, "PCI device"},
    IdName{PldmDescriptorType::PciSubsystemVendor, "PCI subsystem vendor"},
    IdName{PldmDescriptorType::PciSubsystemDevice, "PCI subsystem device"},
};

std::string hexOf(const std::vector<std::uint8_t>& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += hexText(byte, 2);
  }
  return text;
}

std::string uuidOf(const std::vector<std::uint8_t>& bytes) {
  std::string text = hexOf(bytes);
  for (const std::size_t place : {20U, 16U, 12U, 8U}) {
    text.insert(std::min<std::size_t>(place, text.size()), "-");
  }
  return text;
}

}  // namespace

std::string describeComponent(std::uint16_t identifier) {
  const std::string number = "component " + std::to_string(identifier);
  const auto found = std::find_if(
      kPldmComponentNames.begin(), kPldmComponentNames.end(),
      [identifier](const PldmComponentName& known) { return known.identifier == identifier; });
  return found != kPldmComponentNames.end() ? std::string(found->name) + " (" + number + ")"
                                            : number;
}

std::string describeClassification(std::uint16_t classification) {
  if (classification == kDownstreamDevice) {
    return "downstream device";
  }
  return classification < kClassifications.size()
             ? std::string(kClassifications[classification])
             : "classification 0x" + hexText(classification, 1);
}

std::string describeActivation(std::uint16_t activation) {
  std::string text;
  for (std::size_t bit = 0; bit < kActivationBits; ++bit) {
    if ((activation >> bit & 1) == 0) {
      continue;
    }
    text += text.empty() ? "" : ", ";
    text +=
        bit < kActivations.size() ? std::string(kActivations[bit]) : "bit " + std::to_string(bit);
  }
  return text;
}

std::string describeDescriptor(const PldmDescriptor& descriptor) {
  for (const IdName& id : kPciIds) {
    if (id.type == descriptor.type) {
      const std::uint32_t value = descriptor.toNumber();
      return std::string(id.name) + " " + (value == 0 ? "any" : hexText(value, 4));
    }
  }
  if (descriptor.type == PldmDescriptorType::PciRevision) {
    return "PCI revision " + hexText(descriptor.toNumber(), 2);
  }
  if (descriptor.type == PldmDescriptorType::IanaEnterprise) {
    return "IANA enterprise " + std::to_string(descriptor.toNumber());
  }
  if (descriptor.type == PldmDescriptorType::Uuid) {
    return "UUID " + uuidOf(descriptor.data);
  }
  if (descriptor.type == PldmDescriptorType::VendorDefined) {
    return (descriptor.title.empty() ? "vendor-defined" : descriptor.title) + ": " +
           hexOf(descriptor.data);
  }
  return "type 0x" + hexText(static_cast<std::uint16_t>(descriptor.type), 1) + ": " +
         hexOf(descriptor.data);
}

}  // namespace ma
