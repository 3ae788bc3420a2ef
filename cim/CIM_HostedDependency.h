// An element is there in the context of another.

#ifndef ORVEX_CIM_CIM_HOSTEDDEPENDENCY_H_
#define ORVEX_CIM_CIM_HOSTEDDEPENDENCY_H_

#include "Utils/Export.h"
#include "cim/CIM_Dependency.h"
#include "cim/CIM_ManagedElement.h"
#include "core/CimPropertyRef.h"

class ORVEX_CORE_API CIM_HostedDependency : public CIM_Dependency {
 public:
  static constexpr const char* kClassName = "CIM_HostedDependency";
  using Superclass = CIM_Dependency;

  CIM_HostedDependency();
  ~CIM_HostedDependency() override;

  core::CimPropertyRefT<CIM_ManagedElement> Antecedent{"Antecedent", this};
  core::CimPropertyRefT<CIM_ManagedElement> Dependent{"Dependent", this};
};

#endif  // ORVEX_CIM_CIM_HOSTEDDEPENDENCY_H_
