// The provider of the controllers: one for each adapter that the flash library manages.

#ifndef ORVEX_INVENTORY_ORVEX_PORTCONTROLLERCLASS_H_
#define ORVEX_INVENTORY_ORVEX_PORTCONTROLLERCLASS_H_

#include "core/InstanceProvider.h"
#include "inventory/DeviceValues.h"

class Orvex_PortControllerClass : public core::InstanceProvider {
 public:
  Orvex_PortControllerClass();

 protected:
  void refresh() override;

 private:
  // What the instances were built of: for as long as that stays the same, so do they.
  inventory::DeviceSet m_controllers;
};

#endif  // ORVEX_INVENTORY_ORVEX_PORTCONTROLLERCLASS_H_
