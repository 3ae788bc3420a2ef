// The provider of the ports: one for each that the flash library manages.

#ifndef ORVEX_INVENTORY_ORVEX_ETHERNETPORTCLASS_H_
#define ORVEX_INVENTORY_ORVEX_ETHERNETPORTCLASS_H_

#include "core/InstanceProvider.h"
#include "inventory/DeviceValues.h"

class Orvex_EthernetPortClass : public core::InstanceProvider {
 public:
  Orvex_EthernetPortClass();

 protected:
  void refresh() override;

 private:
  // What the instances were built of: for as long as that stays the same, so do they.
  inventory::DeviceSet m_ports;
};

#endif  // ORVEX_INVENTORY_ORVEX_ETHERNETPORTCLASS_H_
