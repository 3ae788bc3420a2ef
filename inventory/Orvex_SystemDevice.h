// An adapter, or one of its ports, is a part of this machine. The controllers come first, then the
// ports.

#ifndef ORVEX_INVENTORY_ORVEX_SYSTEMDEVICE_H_
#define ORVEX_INVENTORY_ORVEX_SYSTEMDEVICE_H_

#include <string>

#include "cim/CIM_SystemDevice.h"
#include "core/InstanceProvider.h"

class Orvex_SystemDevice : public CIM_SystemDevice {
 public:
  static constexpr const char* kClassName = "Orvex_SystemDevice";
  using Superclass = CIM_SystemDevice;

  Orvex_SystemDevice(core::CimInstance* system, core::CimInstance* device);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

// Rebuilds the associations at every enumeration.
class Orvex_SystemDeviceClass : public core::InstanceProvider {
 public:
  Orvex_SystemDeviceClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_INVENTORY_ORVEX_SYSTEMDEVICE_H_
