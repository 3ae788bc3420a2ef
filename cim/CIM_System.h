// A system: what devices and services are of. Its keys are what theirs call it.

#ifndef ORVEX_CIM_CIM_SYSTEM_H_
#define ORVEX_CIM_CIM_SYSTEM_H_

#include "Utils/Export.h"
#include "cim/CIM_EnabledLogicalElement.h"
#include "core/CimKeys.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_System : public CIM_EnabledLogicalElement {
 public:
  static constexpr const char* kClassName = "CIM_System";
  using Superclass = CIM_EnabledLogicalElement;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.CreationClassName, self.Name);
  }

  CIM_System();
  ~CIM_System() override;

  core::CimPropertyString CreationClassName{"CreationClassName", this};
  core::CimPropertyString Name{"Name", this};
  core::CimPropertyString NameFormat{"NameFormat", this};
  core::CimPropertyString PrimaryOwnerName{"PrimaryOwnerName", this};
  core::CimPropertyString PrimaryOwnerContact{"PrimaryOwnerContact", this};
  core::CimPropertyString_arr Roles{"Roles", this};
  core::CimPropertyString_arr OtherIdentifyingInfo{"OtherIdentifyingInfo", this};
  core::CimPropertyString_arr IdentifyingDescriptions{"IdentifyingDescriptions", this};
};

#endif  // ORVEX_CIM_CIM_SYSTEM_H_
