// A port belongs to an adapter.

#ifndef ORVEX_INVENTORY_ORVEX_CONTROLLEDBY_H_
#define ORVEX_INVENTORY_ORVEX_CONTROLLEDBY_H_

#include <string>

#include "cim/CIM_ControlledBy.h"
#include "core/InstanceProvider.h"
#include "inventory/Orvex_EthernetPort.h"

class Orvex_ControlledBy : public CIM_ControlledBy {
 public:
  static constexpr const char* kClassName = "Orvex_ControlledBy";
  using Superclass = CIM_ControlledBy;

  Orvex_ControlledBy(core::CimInstance* controller, Orvex_EthernetPort* port);

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

// Rebuilds the associations at every enumeration.
class Orvex_ControlledByClass : public core::InstanceProvider {
 public:
  Orvex_ControlledByClass();

 protected:
  void refresh() override;
};

#endif  // ORVEX_INVENTORY_ORVEX_CONTROLLEDBY_H_
