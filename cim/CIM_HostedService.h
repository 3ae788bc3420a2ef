// A service runs on a system.

#ifndef ORVEX_CIM_CIM_HOSTEDSERVICE_H_
#define ORVEX_CIM_CIM_HOSTEDSERVICE_H_

#include "Utils/Export.h"
#include "cim/CIM_HostedDependency.h"
#include "cim/CIM_Service.h"
#include "cim/CIM_System.h"
#include "core/CimPropertyRef.h"

class ORVEX_CORE_API CIM_HostedService : public CIM_HostedDependency {
 public:
  static constexpr const char* kClassName = "CIM_HostedService";
  using Superclass = CIM_HostedDependency;

  CIM_HostedService();
  ~CIM_HostedService() override;

  core::CimPropertyRefT<CIM_System> Antecedent{"Antecedent", this};
  core::CimPropertyRefT<CIM_Service> Dependent{"Dependent", this};
};

#endif  // ORVEX_CIM_CIM_HOSTEDSERVICE_H_
