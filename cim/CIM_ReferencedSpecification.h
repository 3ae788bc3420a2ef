// One standard builds on another.

#ifndef ORVEX_CIM_CIM_REFERENCEDSPECIFICATION_H_
#define ORVEX_CIM_CIM_REFERENCEDSPECIFICATION_H_

#include "Utils/Export.h"
#include "cim/CIM_Dependency.h"
#include "cim/CIM_RegisteredSpecification.h"
#include "core/CimPropertyRef.h"

class ORVEX_CORE_API CIM_ReferencedSpecification : public CIM_Dependency {
 public:
  static constexpr const char* kClassName = "CIM_ReferencedSpecification";
  using Superclass = CIM_Dependency;

  CIM_ReferencedSpecification();
  ~CIM_ReferencedSpecification() override;

  core::CimPropertyRefT<CIM_RegisteredSpecification> Antecedent{"Antecedent", this};
  core::CimPropertyRefT<CIM_RegisteredSpecification> Dependent{"Dependent", this};
};

#endif  // ORVEX_CIM_CIM_REFERENCEDSPECIFICATION_H_
