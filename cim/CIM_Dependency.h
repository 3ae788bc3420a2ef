// One element depends on another.

#ifndef ORVEX_CIM_CIM_DEPENDENCY_H_
#define ORVEX_CIM_CIM_DEPENDENCY_H_

#include "Utils/Export.h"
#include "cim/CIM_ManagedElement.h"
#include "core/CimInstance.h"
#include "core/CimKeys.h"
#include "core/CimPropertyRef.h"

class ORVEX_CORE_API CIM_Dependency : public core::CimInstance {
 public:
  static constexpr const char* kClassName = "CIM_Dependency";
  using Superclass = core::CimInstance;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.Antecedent, self.Dependent);
  }

  CIM_Dependency();
  ~CIM_Dependency() override;

  core::CimPropertyRefT<CIM_ManagedElement> Antecedent{"Antecedent", this};
  core::CimPropertyRefT<CIM_ManagedElement> Dependent{"Dependent", this};
};

#endif  // ORVEX_CIM_CIM_DEPENDENCY_H_
