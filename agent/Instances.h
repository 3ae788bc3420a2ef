// What providers ask of other classes' instances. Everything comes from the broker, so the pointers
// are valid until the next enumeration of their class; the front end's request covers the whole.

#ifndef ORVEX_AGENT_INSTANCES_H_
#define ORVEX_AGENT_INSTANCES_H_

#include <string>
#include <vector>

#include "core/CimBroker.h"

namespace agent {

using Instances = std::vector<core::CimInstance*>;

// Returns all instances of the class.
[[nodiscard]] inline Instances findInstances(const char* className) {
  Instances instances;
  for (core::CimInstance* instance : core::GetCimBroker().getInstances(className)) {
    instances.push_back(instance);
  }
  return instances;
}

// Returns the instances of T::kClassName that are a T.
template <class T>
[[nodiscard]] std::vector<T*> findInstancesOf() {
  std::vector<T*> found;
  for (core::CimInstance* instance : core::GetCimBroker().getInstances(T::kClassName)) {
    if (auto* typed = dynamic_cast<T*>(instance)) {
      found.push_back(typed);
    }
  }
  return found;
}

// Returns the text of the property in force, empty when the instance has none of that name.
[[nodiscard]] inline std::string getPropertyText(core::CimInstance& instance, const char* name) {
  const core::CimProperty* property = instance.getProperty(name);
  return property != nullptr ? property->toString() : std::string();
}

}  // namespace agent

#endif  // ORVEX_AGENT_INSTANCES_H_
