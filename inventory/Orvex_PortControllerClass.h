// The provider of the controllers: one for each adapter that the flash library manages. What
// somebody should mend of the adapters, or know of a write whose writer died, is an error record,
// once.

#ifndef ORVEX_INVENTORY_ORVEX_PORTCONTROLLERCLASS_H_
#define ORVEX_INVENTORY_ORVEX_PORTCONTROLLERCLASS_H_

#include <set>
#include <string>
#include <vector>

#include "core/InstanceProvider.h"
#include "inventory/DeviceValues.h"
#include "midapi/MidApi.h"

class Orvex_PortControllerClass : public core::InstanceProvider {
 public:
  // Returns what somebody should mend or know, a line each.
  using FindProblems = std::vector<std::string> (*)();

  explicit Orvex_PortControllerClass(FindProblems findProblems = ma::findAdapterProblems);

 protected:
  void refresh() override;

 private:
  void reportProblems();

  const FindProblems m_findProblems;
  // Guarded by the request, as the instances are.
  std::set<std::string> m_reported;
  // What the instances were built of: for as long as that stays the same, so do they.
  inventory::DeviceSet m_controllers;
};

#endif  // ORVEX_INVENTORY_ORVEX_PORTCONTROLLERCLASS_H_
