// One element depends on another.

#ifndef ORVEX_CIM_CIM_DEPENDENCY_H_
#define ORVEX_CIM_CIM_DEPENDENCY_H_

#include "Utils/Export.h"
#include "core/CimInstance.h"
#include "core/CimPropertyRef.h"

class CIM_ManagedElement;

class ORVEX_CORE_API CIM_Dependency : public core::CimInstance {
 public:
  CIM_Dependency();
  ~CIM_Dependency() override;

  core::CimPropertyRefT<CIM_ManagedElement> Antecedent{"Antecedent", this};
  core::CimPropertyRefT<CIM_ManagedElement> Dependent{"Dependent", this};
};

#endif  // ORVEX_CIM_CIM_DEPENDENCY_H_
