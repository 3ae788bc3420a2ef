#include "inventory/Orvex_SystemDevice.h"

#include "inventory/Instances.h"
#include "inventory/Orvex_ComputerSystem.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_PortController.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_SystemDevice"};

}  // namespace

Orvex_SystemDevice::Orvex_SystemDevice(core::CimInstance* system, core::CimInstance* device) {
  GroupComponent.setTarget(system);
  PartComponent.setTarget(device);
  core::markKeys(*this);
}

Orvex_SystemDeviceClass::Orvex_SystemDeviceClass()
    : InstanceProvider(Orvex_SystemDevice::kClassName,
                       {kLog, "Orvex_SystemDeviceClass::getInstances", "getInstances",
                        "SystemDevice::getInstances"}) {}

void Orvex_SystemDeviceClass::refresh() {
  instances().clear();
  const auto systems = inventory::findInstances<Orvex_ComputerSystem>();
  const auto controllers = inventory::findInstances<Orvex_PortController>();
  const auto ports = inventory::findInstances<Orvex_EthernetPort>();
  for (Orvex_ComputerSystem* system : systems) {
    for (Orvex_PortController* controller : controllers) {
      instances().add(new Orvex_SystemDevice(system, controller));
    }
    for (Orvex_EthernetPort* port : ports) {
      instances().add(new Orvex_SystemDevice(system, port));
    }
  }
}
