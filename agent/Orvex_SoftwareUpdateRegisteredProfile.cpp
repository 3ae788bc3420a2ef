#include "agent/Orvex_SoftwareUpdateRegisteredProfile.h"

#include <cstdint>

namespace {

constexpr utils::LogSource kLog{"Orvex_SoftwareUpdateRegisteredProfile"};

// The numbers of the DMTF class CIM_RegisteredProfile.
constexpr std::uint16_t kSpecificationTypeProfile = 2;
constexpr std::uint16_t kOrganizationDmtf = 2;
constexpr std::uint16_t kAdvertiseOther = 1;

}  // namespace

void Orvex_SoftwareUpdateRegisteredProfile::setPropertyValues() {
  InstanceID.setValue(kInstanceId);
  core::markKeys(*this);
  SpecificationType.setValue(kSpecificationTypeProfile);
  RegisteredOrganization.setValue(kOrganizationDmtf);
  OtherRegisteredOrganization.setNull();
  RegisteredName.setValue("Software Update Profile");
  RegisteredVersion.setValue("1.0.0");
  AdvertiseTypes.setValue({kAdvertiseOther});
  AdvertiseTypeDescriptions.setValue({"WS-Identify"});
  Caption.setValue(RegisteredName.getValue());
  Description.setValue("Software Update Profile for Zolan(R) Ethernet Adapters");
  ElementName.setNull();
}

Orvex_SoftwareUpdateRegisteredProfileClass::Orvex_SoftwareUpdateRegisteredProfileClass()
    : SingleInstanceProvider(Orvex_SoftwareUpdateRegisteredProfile::kClassName,
                             {kLog, "Orvex_SoftwareUpdateRegisteredProfileClass::getInstances",
                              "getInstance", "RegisteredProfile::getInstances"}) {}
