// The keys of instances.
//
// A class states its keys once, for its instances and for its declaration (core/DeclareClass.h):
//
//   template <class Self>
//   static auto getKeys(Self& self) {
//     return core::keys(self.InstanceID);
//   }
//
// Self is the class or one below it, whose property of that name may be another one.

#ifndef ORVEX_CORE_CIMKEYS_H_
#define ORVEX_CORE_CIMKEYS_H_

#include <array>

#include "core/CimProperty.h"

namespace core {

template <class... Properties>
[[nodiscard]] std::array<CimProperty*, sizeof...(Properties)> keys(Properties&... properties) {
  return {&properties...};
}

// Marks the keys of the instance. Instance is the most derived class that declares one of them
// anew.
template <class Instance>
void markKeys(Instance& instance) {
  for (CimProperty* key : Instance::getKeys(instance)) {
    key->setKey();
  }
}

}  // namespace core

#endif  // ORVEX_CORE_CIMKEYS_H_
