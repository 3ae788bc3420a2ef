// The provider of the ports: one for each that the flash library manages.

#ifndef ORVEX_INVENTORY_ORVEX_ETHERNETPORTCLASS_H_
#define ORVEX_INVENTORY_ORVEX_ETHERNETPORTCLASS_H_

#include "core/InstanceProvider.h"

class Orvex_EthernetPortClass : public core::InstanceProvider {
 public:
  Orvex_EthernetPortClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_INVENTORY_ORVEX_ETHERNETPORTCLASS_H_
