// A piece of software, wherever it is: installed, or in a file.

#ifndef ORVEX_CIM_CIM_SOFTWAREIDENTITY_H_
#define ORVEX_CIM_CIM_SOFTWAREIDENTITY_H_

#include "Utils/Export.h"
#include "cim/CIM_LogicalElement.h"
#include "core/CimKeys.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_SoftwareIdentity : public CIM_LogicalElement {
 public:
  static constexpr const char* kClassName = "CIM_SoftwareIdentity";
  using Superclass = CIM_LogicalElement;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.InstanceID);
  }

  CIM_SoftwareIdentity();
  ~CIM_SoftwareIdentity() override;

  core::CimPropertyString InstanceID{"InstanceID", this};
  core::CimPropertyUint16 MajorVersion{"MajorVersion", this};
  core::CimPropertyUint16 MinorVersion{"MinorVersion", this};
  core::CimPropertyUint16 RevisionNumber{"RevisionNumber", this};
  core::CimPropertyUint16 BuildNumber{"BuildNumber", this};
  core::CimPropertyUint64 LargeBuildNumber{"LargeBuildNumber", this};
  core::CimPropertyBoolean IsLargeBuildNumber{"IsLargeBuildNumber", this};
  core::CimPropertyString VersionString{"VersionString", this};
  core::CimPropertyString_arr TargetOperatingSystems{"TargetOperatingSystems", this};
  core::CimPropertyString Manufacturer{"Manufacturer", this};
  core::CimPropertyString_arr Languages{"Languages", this};
  core::CimPropertyUint16_arr Classifications{"Classifications", this};
  core::CimPropertyString_arr ClassificationDescriptions{"ClassificationDescriptions", this};
  core::CimPropertyString SerialNumber{"SerialNumber", this};
  core::CimPropertyString_arr TargetTypes{"TargetTypes", this};
  core::CimPropertyString_arr IdentityInfoValue{"IdentityInfoValue", this};
  core::CimPropertyString_arr IdentityInfoType{"IdentityInfoType", this};
  core::CimPropertyDatetime ReleaseDate{"ReleaseDate", this};
  core::CimPropertyBoolean IsEntity{"IsEntity", this};
  core::CimPropertyUint16 ExtendedResourceType{"ExtendedResourceType", this};
  core::CimPropertyString OtherExtendedResourceTypeDescription{
      "OtherExtendedResourceTypeDescription", this};
  core::CimPropertyUint16 MinExtendedResourceTypeMajorVersion{"MinExtendedResourceTypeMajorVersion",
                                                              this};
  core::CimPropertyUint16 MinExtendedResourceTypeMinorVersion{"MinExtendedResourceTypeMinorVersion",
                                                              this};
  core::CimPropertyUint16 MinExtendedResourceTypeRevisionNumber{
      "MinExtendedResourceTypeRevisionNumber", this};
  core::CimPropertyUint16 MinExtendedResourceTypeBuildNumber{"MinExtendedResourceTypeBuildNumber",
                                                             this};
  core::CimPropertyUint16_arr TargetOSTypes{"TargetOSTypes", this};
};

#endif  // ORVEX_CIM_CIM_SOFTWAREIDENTITY_H_
