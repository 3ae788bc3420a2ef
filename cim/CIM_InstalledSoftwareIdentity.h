// A piece of software is installed on a system.

#ifndef ORVEX_CIM_CIM_INSTALLEDSOFTWAREIDENTITY_H_
#define ORVEX_CIM_CIM_INSTALLEDSOFTWAREIDENTITY_H_

#include "Utils/Export.h"
#include "cim/CIM_SoftwareIdentity.h"
#include "cim/CIM_System.h"
#include "core/CimInstance.h"
#include "core/CimKeys.h"
#include "core/CimPropertyRef.h"

class ORVEX_CORE_API CIM_InstalledSoftwareIdentity : public core::CimInstance {
 public:
  static constexpr const char* kClassName = "CIM_InstalledSoftwareIdentity";
  using Superclass = core::CimInstance;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.System, self.InstalledSoftware);
  }

  CIM_InstalledSoftwareIdentity();
  ~CIM_InstalledSoftwareIdentity() override;

  core::CimPropertyRefT<CIM_System> System{"System", this};
  core::CimPropertyRefT<CIM_SoftwareIdentity> InstalledSoftware{"InstalledSoftware", this};
};

#endif  // ORVEX_CIM_CIM_INSTALLEDSOFTWAREIDENTITY_H_
