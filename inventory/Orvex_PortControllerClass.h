// The provider of the controllers: one for each adapter that the flash library manages.

#ifndef ORVEX_INVENTORY_ORVEX_PORTCONTROLLERCLASS_H_
#define ORVEX_INVENTORY_ORVEX_PORTCONTROLLERCLASS_H_

#include "core/InstanceProvider.h"

class Orvex_PortControllerClass : public core::InstanceProvider {
 public:
  Orvex_PortControllerClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_INVENTORY_ORVEX_PORTCONTROLLERCLASS_H_
