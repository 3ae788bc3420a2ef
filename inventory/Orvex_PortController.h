// The controller of an Ethernet adapter: what its ports belong to. For its use by other agents see
// Orvex_EthernetPort.

#ifndef ORVEX_INVENTORY_ORVEX_PORTCONTROLLER_H_
#define ORVEX_INVENTORY_ORVEX_PORTCONTROLLER_H_

#include <string>

#include "cim/CIM_PortController.h"
#include "inventory/Orvex_EthernetPort.h"

class Orvex_PortController : public CIM_PortController {
 public:
  static constexpr const char* kClassName = "Orvex_PortController";
  using Superclass = CIM_PortController;

  ~Orvex_PortController() override = default;

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  // Returns whether the port belongs to this controller.
  [[nodiscard]] virtual bool ownsPort(const Orvex_EthernetPort& port) const = 0;

  // The PCI ids, under the names that they have in DMTF CIM_PCIDevice.
  core::CimPropertyUint16 VendorID{"VendorID", this};
  core::CimPropertyUint16 PCIDeviceID{"PCIDeviceID", this};
  core::CimPropertyUint16 SubsystemVendorID{"SubsystemVendorID", this};
  core::CimPropertyUint16 SubsystemID{"SubsystemID", this};
  core::CimPropertyString PartNumber{"PartNumber", this};
  core::CimPropertyString SerialNumber{"SerialNumber", this};
  // The driver of the operating system.
  core::CimPropertyString DriverName{"DriverName", this};
  // Whether its firmware can be replaced, and if not why, where that is known.
  core::CimPropertyBoolean IsUpdatable{"IsUpdatable", this};
  core::CimPropertyString WhyNotUpdatable{"WhyNotUpdatable", this};
  // Its flash is being written just now, and what is told is what was last known.
  core::CimPropertyBoolean IsBeingWritten{"IsBeingWritten", this};
};

#endif  // ORVEX_INVENTORY_ORVEX_PORTCONTROLLER_H_
