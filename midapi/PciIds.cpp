#include "midapi/PciIds.h"

#include "midapi/Hex.h"

namespace ma {
namespace {

constexpr std::size_t kDigits = 4;

std::string idText(std::uint16_t id) {
  return id == 0 ? "any" : hexText(id, kDigits);
}

std::string pairText(std::uint16_t vendor, std::uint16_t device) {
  return vendor == 0 && device == 0 ? "any" : idText(vendor) + ":" + idText(device);
}

}  // namespace

std::string describeIds(const PciIds& ids) {
  std::string text = pairText(ids.vendor, ids.device);
  if (ids.subsystemVendor != 0 || ids.subsystemDevice != 0) {
    text += " sub " + pairText(ids.subsystemVendor, ids.subsystemDevice);
  }
  return text;
}

std::string describeDevice(const PciIds& ids) {
  return hexText(ids.vendor, kDigits) + ":" + hexText(ids.device, kDigits) + " sub " +
         hexText(ids.subsystemVendor, kDigits) + ":" + hexText(ids.subsystemDevice, kDigits);
}

}  // namespace ma
