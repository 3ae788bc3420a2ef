#include "midapi/PldmMatch.h"

namespace ma {
namespace {

bool isAnyOr(std::uint16_t named, std::uint16_t id) {
  return named == 0 || named == id;
}

}  // namespace

PciIds idsOf(const PldmRecord& record) {
  PciIds ids;
  for (const PldmDescriptor& descriptor : record.descriptors) {
    const auto value = static_cast<std::uint16_t>(descriptor.toNumber());
    if (descriptor.type == PldmDescriptorType::PciVendor) {
      ids.vendor = value;
    } else if (descriptor.type == PldmDescriptorType::PciDevice) {
      ids.device = value;
    } else if (descriptor.type == PldmDescriptorType::PciSubsystemVendor) {
      ids.subsystemVendor = value;
    } else if (descriptor.type == PldmDescriptorType::PciSubsystemDevice) {
      ids.subsystemDevice = value;
    }
  }
  return ids;
}

bool isFor(const PldmRecord& record, const PciIds& ids) {
  const PciIds named = idsOf(record);
  return isAnyOr(named.vendor, ids.vendor) && isAnyOr(named.device, ids.device) &&
         isAnyOr(named.subsystemVendor, ids.subsystemVendor) &&
         isAnyOr(named.subsystemDevice, ids.subsystemDevice);
}

bool namesDevice(const PldmRecord& record) {
  const PciIds named = idsOf(record);
  return named.vendor != 0 && named.device != 0;
}

std::vector<std::size_t> findRecordsFor(const PldmPackage& package, const PciIds& ids) {
  std::vector<std::size_t> found;
  for (std::size_t index = 0; index < package.devices.size(); ++index) {
    if (isFor(package.devices[index], ids)) {
      found.push_back(index);
    }
  }
  return found;
}

}  // namespace ma
