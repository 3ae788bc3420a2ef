// An element is a part of another.

#ifndef ORVEX_CIM_CIM_COMPONENT_H_
#define ORVEX_CIM_CIM_COMPONENT_H_

#include "Utils/Export.h"
#include "cim/CIM_ManagedElement.h"
#include "core/CimInstance.h"
#include "core/CimKeys.h"
#include "core/CimPropertyRef.h"

class ORVEX_CORE_API CIM_Component : public core::CimInstance {
 public:
  static constexpr const char* kClassName = "CIM_Component";
  using Superclass = core::CimInstance;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.GroupComponent, self.PartComponent);
  }

  CIM_Component();
  ~CIM_Component() override;

  core::CimPropertyRefT<CIM_ManagedElement> GroupComponent{"GroupComponent", this};
  core::CimPropertyRefT<CIM_ManagedElement> PartComponent{"PartComponent", this};
};

#endif  // ORVEX_CIM_CIM_COMPONENT_H_
