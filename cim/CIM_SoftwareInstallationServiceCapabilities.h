// What a software installation service can do.

#ifndef ORVEX_CIM_CIM_SOFTWAREINSTALLATIONSERVICECAPABILITIES_H_
#define ORVEX_CIM_CIM_SOFTWAREINSTALLATIONSERVICECAPABILITIES_H_

#include "Utils/Export.h"
#include "cim/CIM_Capabilities.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_SoftwareInstallationServiceCapabilities : public CIM_Capabilities {
 public:
  static constexpr const char* kClassName = "CIM_SoftwareInstallationServiceCapabilities";
  using Superclass = CIM_Capabilities;

  CIM_SoftwareInstallationServiceCapabilities();
  ~CIM_SoftwareInstallationServiceCapabilities() override;

  core::CimPropertyUint16_arr SupportedAsynchronousActions{"SupportedAsynchronousActions", this};
  core::CimPropertyUint16_arr SupportedSynchronousActions{"SupportedSynchronousActions", this};
  core::CimPropertyString_arr SupportedTargetTypes{"SupportedTargetTypes", this};
  core::CimPropertyUint16_arr SupportedExtendedResourceTypes{"SupportedExtendedResourceTypes",
                                                             this};
  core::CimPropertyBoolean CanAddToCollection{"CanAddToCollection", this};
  core::CimPropertyUint16_arr SupportedInstallOptions{"SupportedInstallOptions", this};
  core::CimPropertyString_arr OtherSupportedExtendedResourceTypeDescriptions{
      "OtherSupportedExtendedResourceTypeDescriptions", this};
  core::CimPropertyUint16_arr SupportedExtendedResourceTypesMajorVersions{
      "SupportedExtendedResourceTypesMajorVersions", this};
  core::CimPropertyUint16_arr SupportedExtendedResourceTypesMinorVersions{
      "SupportedExtendedResourceTypesMinorVersions", this};
  core::CimPropertyUint16_arr SupportedExtendedResourceTypesRevisionNumbers{
      "SupportedExtendedResourceTypesRevisionNumbers", this};
  core::CimPropertyUint16_arr SupportedExtendedResourceTypesBuildNumbers{
      "SupportedExtendedResourceTypesBuildNumbers", this};
  core::CimPropertyUint16_arr SupportedURISchemes{"SupportedURISchemes", this};
  core::CimPropertyString InstanceID{"InstanceID", this};
  core::CimPropertyString ElementName{"ElementName", this};
  core::CimPropertyString Caption{"Caption", this};
  core::CimPropertyString Description{"Description", this};
  core::CimPropertyUint64 Generation{"Generation", this};
};

#endif  // ORVEX_CIM_CIM_SOFTWAREINSTALLATIONSERVICECAPABILITIES_H_
