// The provider of one served class: the broker reaches the instances of a class through it. Any
// thread may call; a provider guards what it keeps.

#ifndef ORVEX_CORE_CIMCLASS_H_
#define ORVEX_CORE_CIMCLASS_H_

#include <string>

#include "Utils/Export.h"
#include "core/InstanceList.h"

namespace core {

class ORVEX_CORE_API CimClass {
 public:
  CimClass() = default;
  CimClass(const CimClass&) = delete;
  CimClass& operator=(const CimClass&) = delete;

  // Returns the name of the CIM class that is served.
  [[nodiscard]] virtual std::string getName() const = 0;
  // Brings the provider's instances up to date and returns a cursor over those that are not marked
  // deleted. They stay the provider's and are valid until the next call.
  [[nodiscard]] virtual InstanceList::Iterator getInstances() = 0;

  virtual ~CimClass();
};

}  // namespace core

#endif  // ORVEX_CORE_CIMCLASS_H_
