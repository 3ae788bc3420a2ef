// The instances that the broker serves, for associations between them.

#ifndef ORVEX_INVENTORY_INSTANCES_H_
#define ORVEX_INVENTORY_INSTANCES_H_

#include <vector>

#include "core/CimBroker.h"

namespace inventory {

// Returns the instances of the class, as far as they are this agent's. They are valid until the
// next enumeration of it, so an association asks for each class once.
template <class Instance>
[[nodiscard]] std::vector<Instance*> findInstances() {
  std::vector<Instance*> found;
  for (core::CimInstance* instance : core::GetCimBroker().getInstances(Instance::kClassName)) {
    if (auto* own = dynamic_cast<Instance*>(instance)) {
      found.push_back(own);
    }
  }
  return found;
}

}  // namespace inventory

#endif  // ORVEX_INVENTORY_INSTANCES_H_
