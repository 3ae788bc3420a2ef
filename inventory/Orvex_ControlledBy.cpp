#include "inventory/Orvex_ControlledBy.h"

#include <map>
#include <string>

#include "inventory/Adapters.h"
#include "inventory/Instances.h"
#include "inventory/Orvex_PortController.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_ControlledBy"};

}  // namespace

Orvex_ControlledBy::Orvex_ControlledBy(core::CimInstance* controller, Orvex_EthernetPort* port) {
  Antecedent.setTarget(controller);
  Dependent.setTarget(port);
  core::markKeys(*this);
  // The number by which the adapter knows its port is that of the PCI function.
  DeviceNumber.setValue(port->PortNumber.toString());
}

Orvex_ControlledByClass::Orvex_ControlledByClass()
    : InstanceProvider(Orvex_ControlledBy::kClassName,
                       {kLog, "Orvex_ControlledByClass::getInstances", "getInstances",
                        "ControlledBy::getInstances"}) {}

void Orvex_ControlledByClass::refresh() {
  instances().clear();
  std::map<std::string, Orvex_PortController*> controllers;
  for (Orvex_PortController* controller : inventory::findInstances<Orvex_PortController>()) {
    controllers.emplace(controller->DeviceID.getValue(), controller);
  }
  for (Orvex_EthernetPort* port : inventory::findInstances<Orvex_EthernetPort>()) {
    const auto controller = controllers.find(inventory::getAdapterIdentity(port->getIdentity()));
    if (controller != controllers.end()) {  // an adapter may have gone just now
      instances().add(new Orvex_ControlledBy(controller->second, port));
    }
  }
}
