// The values that ports and controllers have in common.

#ifndef ORVEX_INVENTORY_DEVICEVALUES_H_
#define ORVEX_INVENTORY_DEVICEVALUES_H_

#include <string>
#include <vector>

#include "cim/CIM_LogicalDevice.h"
#include "midapi/AdapterListing.h"

namespace inventory {

// The class that the keys of devices name as that of their system.
inline constexpr const char* kSystemClass = "CIM_UnitaryComputerSystem";

// What the values of devices are made of, beside constants. Devices that were built of equal ones
// are equal.
struct DeviceSet {
  std::string systemName;
  std::vector<ma::AdapterListing> adapters;

  friend bool operator==(const DeviceSet&, const DeviceSet&) = default;
};

// Returns the set of the devices of these adapters, on this system.
[[nodiscard]] DeviceSet makeDeviceSet(std::vector<ma::AdapterListing> adapters);

// Fills the keys and names of a device and marks the keys.
void setDeviceValues(CIM_LogicalDevice& device, const std::string& deviceId,
                     const std::string& caption);

}  // namespace inventory

#endif  // ORVEX_INVENTORY_DEVICEVALUES_H_
