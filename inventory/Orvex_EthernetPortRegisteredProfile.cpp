#include "inventory/Orvex_EthernetPortRegisteredProfile.h"

#include <cstdint>

namespace {

constexpr utils::LogSource kLog{"Orvex_EthernetPortRegisteredProfile"};

// The numbers of the DMTF class CIM_RegisteredProfile.
constexpr std::uint16_t kSpecificationTypeProfile = 2;
constexpr std::uint16_t kOrganizationDmtf = 2;
constexpr std::uint16_t kAdvertiseOther = 1;

}  // namespace

void Orvex_EthernetPortRegisteredProfile::setPropertyValues() {
  InstanceID.setValue("Orvex:EthernetPort_Profile");
  core::markKeys(*this);
  SpecificationType.setValue(kSpecificationTypeProfile);
  RegisteredOrganization.setValue(kOrganizationDmtf);
  RegisteredName.setValue("Ethernet Port Profile");
  RegisteredVersion.setValue("1.0.0");
  AdvertiseTypes.setValue({kAdvertiseOther});
  AdvertiseTypeDescriptions.setValue({"WS-Identify"});
  Caption.setValue(RegisteredName.getValue());
  Description.setValue("Ethernet Port Profile for Zolan(R) Ethernet Adapters");
}

Orvex_EthernetPortRegisteredProfileClass::Orvex_EthernetPortRegisteredProfileClass()
    : SingleInstanceProvider(Orvex_EthernetPortRegisteredProfile::kClassName,
                             {kLog, "Orvex_EthernetPortRegisteredProfileClass::getInstances",
                              "getInstance", "RegisteredProfile::getInstances"}) {}
