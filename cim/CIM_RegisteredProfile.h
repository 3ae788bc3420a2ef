// A management profile to which a system conforms.

#ifndef ORVEX_CIM_CIM_REGISTEREDPROFILE_H_
#define ORVEX_CIM_CIM_REGISTEREDPROFILE_H_

#include "Utils/Export.h"
#include "cim/CIM_RegisteredSpecification.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_RegisteredProfile : public CIM_RegisteredSpecification {
 public:
  static constexpr const char* kClassName = "CIM_RegisteredProfile";
  using Superclass = CIM_RegisteredSpecification;

  CIM_RegisteredProfile();
  ~CIM_RegisteredProfile() override;

  core::CimPropertyUint16 SpecificationType{"SpecificationType", this};
  core::CimPropertyString_arr ImplementedFeatures{"ImplementedFeatures", this};
  core::CimPropertyString InstanceID{"InstanceID", this};
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

#endif  // ORVEX_CIM_CIM_REGISTEREDPROFILE_H_
