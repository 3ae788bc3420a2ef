// A piece of software is for an element, or on it.

#ifndef ORVEX_CIM_CIM_ELEMENTSOFTWAREIDENTITY_H_
#define ORVEX_CIM_CIM_ELEMENTSOFTWAREIDENTITY_H_

#include "Utils/Export.h"
#include "cim/CIM_Dependency.h"
#include "cim/CIM_ManagedElement.h"
#include "cim/CIM_SoftwareIdentity.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_ElementSoftwareIdentity : public CIM_Dependency {
 public:
  static constexpr const char* kClassName = "CIM_ElementSoftwareIdentity";
  using Superclass = CIM_Dependency;

  CIM_ElementSoftwareIdentity();
  ~CIM_ElementSoftwareIdentity() override;

  core::CimPropertyRefT<CIM_SoftwareIdentity> Antecedent{"Antecedent", this};
  core::CimPropertyRefT<CIM_ManagedElement> Dependent{"Dependent", this};
  core::CimPropertyUint16 UpgradeCondition{"UpgradeCondition", this};
  core::CimPropertyString OtherUpgradeCondition{"OtherUpgradeCondition", this};
  core::CimPropertyUint16_arr ElementSoftwareStatus{"ElementSoftwareStatus", this};
};

#endif  // ORVEX_CIM_CIM_ELEMENTSOFTWAREIDENTITY_H_
