#include "agent/Orvex_SoftwareInstallationServiceCapabilities.h"

#include <cstdint>
#include <initializer_list>

#include "Utils/FirmwareTypes.h"
#include "Utils/Format.h"
#include "agent/Orvex_SoftwareInstallationService.h"
#include "cim/InstallOptions.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_SoftwareInstallationServiceCapabilities"};

// The numbers of the DMTF class CIM_SoftwareInstallationServiceCapabilities.
constexpr std::uint16_t kInstallFromSoftwareIdentity = 3;
constexpr std::uint16_t kInstallFromUri = 5;
constexpr std::uint16_t kNoneSupported = 2;
constexpr std::uint16_t kNotApplicable = 2;
constexpr std::uint16_t kSchemeFile = 3;

}  // namespace

std::string Orvex_SoftwareInstallationServiceCapabilities::getIdentity() const {
  return utils::format("Capabilities@%s", Orvex_SoftwareInstallationService::kServiceName);
}

void Orvex_SoftwareInstallationServiceCapabilities::setPropertyValues() {
  Caption.setValue("Capabilities for Ethernet Firmware Update");
  Description.setValue("Capabilities for Firmware Update Service for Zolan(R) Ethernet Adapters");
  ElementName.setValue(Caption.getValue());
  InstanceID.setValue(utils::format("Orvex:%s", getIdentity().c_str()));
  core::markKeys(*this);
  SupportedAsynchronousActions.setValue({kInstallFromUri, kInstallFromSoftwareIdentity});
  SupportedSynchronousActions.setValue({kNoneSupported});
  for (const std::string_view name : utils::kFirmwareTypeNames) {
    if (!name.empty()) {  // the type None
      SupportedTargetTypes.addValue(std::string(name));
    }
  }
  SupportedExtendedResourceTypes.setValue({kNotApplicable});
  CanAddToCollection.setValue(false);
  SupportedInstallOptions.setValue({cim::kForceInstallation, cim::kUpdate, cim::kTargetTypes});
  SupportedURISchemes.setValue({kSchemeFile});
  // Nothing is known of these; a value that somebody set does not stay.
  for (core::CimProperty* property : std::initializer_list<core::CimProperty*>{
           &Generation, &OtherSupportedExtendedResourceTypeDescriptions,
           &SupportedExtendedResourceTypesMajorVersions,
           &SupportedExtendedResourceTypesMinorVersions,
           &SupportedExtendedResourceTypesRevisionNumbers,
           &SupportedExtendedResourceTypesBuildNumbers}) {
    property->setNull();
  }
}

Orvex_SoftwareInstallationServiceCapabilitiesClass::
    Orvex_SoftwareInstallationServiceCapabilitiesClass()
    : SingleInstanceProvider(
          Orvex_SoftwareInstallationServiceCapabilities::kClassName,
          {kLog, "Orvex_SoftwareInstallationServiceCapabilitiesClass::getInstances", "getInstance",
           "SoftwareInstallationService::getInstances"}) {}
