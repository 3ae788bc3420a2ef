#include "inventory/DeviceValues.h"

#include <utility>

#include "Os/Environment.h"
#include "cim/OperationalStatus.h"

namespace inventory {

DeviceSet makeDeviceSet(std::vector<ma::AdapterListing> adapters) {
  return {os::getComputerName(), std::move(adapters)};
}

void setDeviceValues(CIM_LogicalDevice& device, const std::string& deviceId,
                     const std::string& caption) {
  device.SystemCreationClassName.setValue(kSystemClass);
  device.SystemName.setValue(os::getComputerName());
  device.CreationClassName.setValue(device.getClassName());
  device.DeviceID.setValue(deviceId);
  core::markKeys(device);
  device.Caption.setValue(caption);
  device.Description.setValue(caption);
  device.ElementName.setValue(caption);
  device.Name.setValue(deviceId);
  device.OperationalStatus.setValue({cim::kOperationalStatusOk});
}

}  // namespace inventory
