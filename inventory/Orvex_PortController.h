// The controller of an Ethernet adapter: what its ports belong to. For its use by other agents see
// Orvex_EthernetPort.

#ifndef ORVEX_INVENTORY_ORVEX_PORTCONTROLLER_H_
#define ORVEX_INVENTORY_ORVEX_PORTCONTROLLER_H_

#include <string>

#include "cim/CIM_LogicalDevice.h"
#include "inventory/Orvex_EthernetPort.h"

class Orvex_PortController : public CIM_LogicalDevice {
 public:
  static constexpr const char* kClassName = "Orvex_PortController";
  using Superclass = CIM_LogicalDevice;

  ~Orvex_PortController() override = default;

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  // Returns whether the port belongs to this controller.
  [[nodiscard]] virtual bool ownsPort(const Orvex_EthernetPort& port) const = 0;

  core::CimPropertyUint16 ControllerType{"ControllerType", this};
};

#endif  // ORVEX_INVENTORY_ORVEX_PORTCONTROLLER_H_
