// A standard to which a system conforms.

#ifndef ORVEX_CIM_CIM_REGISTEREDSPECIFICATION_H_
#define ORVEX_CIM_CIM_REGISTEREDSPECIFICATION_H_

#include "Utils/Export.h"
#include "cim/CIM_ManagedElement.h"
#include "core/CimKeys.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_RegisteredSpecification : public CIM_ManagedElement {
 public:
  static constexpr const char* kClassName = "CIM_RegisteredSpecification";
  using Superclass = CIM_ManagedElement;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.InstanceID);
  }

  CIM_RegisteredSpecification();
  ~CIM_RegisteredSpecification() override;

  core::CimPropertyString InstanceID{"InstanceID", this};
  core::CimPropertyUint16 SpecificationType{"SpecificationType", this};
  core::CimPropertyString OtherSpecificationType{"OtherSpecificationType", this};
  core::CimPropertyUint16 RegisteredOrganization{"RegisteredOrganization", this};
  core::CimPropertyString OtherRegisteredOrganization{"OtherRegisteredOrganization", this};
  core::CimPropertyString RegisteredName{"RegisteredName", this};
  core::CimPropertyString RegisteredVersion{"RegisteredVersion", this};
  core::CimPropertyUint16_arr AdvertiseTypes{"AdvertiseTypes", this};
  core::CimPropertyString_arr AdvertiseTypeDescriptions{"AdvertiseTypeDescriptions", this};
  core::CimPropertyString Caption{"Caption", this};
  core::CimPropertyString Description{"Description", this};
  core::CimPropertyString ElementName{"ElementName", this};
  core::CimPropertyUint64 Generation{"Generation", this};
};

#endif  // ORVEX_CIM_CIM_REGISTEREDSPECIFICATION_H_
