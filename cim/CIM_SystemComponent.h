// An element is a part of a system.

#ifndef ORVEX_CIM_CIM_SYSTEMCOMPONENT_H_
#define ORVEX_CIM_CIM_SYSTEMCOMPONENT_H_

#include "Utils/Export.h"
#include "cim/CIM_Component.h"
#include "cim/CIM_ManagedSystemElement.h"
#include "cim/CIM_System.h"
#include "core/CimPropertyRef.h"

class ORVEX_CORE_API CIM_SystemComponent : public CIM_Component {
 public:
  static constexpr const char* kClassName = "CIM_SystemComponent";
  using Superclass = CIM_Component;

  CIM_SystemComponent();
  ~CIM_SystemComponent() override;

  core::CimPropertyRefT<CIM_System> GroupComponent{"GroupComponent", this};
  core::CimPropertyRefT<CIM_ManagedSystemElement> PartComponent{"PartComponent", this};
};

#endif  // ORVEX_CIM_CIM_SYSTEMCOMPONENT_H_
