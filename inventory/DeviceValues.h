// The values that ports and controllers have in common.

#ifndef ORVEX_INVENTORY_DEVICEVALUES_H_
#define ORVEX_INVENTORY_DEVICEVALUES_H_

#include <string>

#include "cim/CIM_LogicalDevice.h"

namespace inventory {

// Fills the keys and names of a device and marks the keys.
void setDeviceValues(CIM_LogicalDevice& device, const std::string& deviceId,
                     const std::string& caption);

}  // namespace inventory

#endif  // ORVEX_INVENTORY_DEVICEVALUES_H_
