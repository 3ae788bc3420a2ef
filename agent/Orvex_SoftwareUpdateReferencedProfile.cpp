#include "agent/Orvex_SoftwareUpdateReferencedProfile.h"

#include "agent/Instances.h"
#include "agent/Orvex_SoftwareUpdateRegisteredProfile.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_SoftwareUpdateReferencedProfile"};
constexpr const char* kGetInstances = "Orvex_SoftwareUpdateReferencedProfileClass::getInstances";
// What the inventory calls its profile. It serves it under the same class as this agent its own.
constexpr const char* kPortProfileId = "Orvex:EthernetPort_Profile";

}  // namespace

Orvex_SoftwareUpdateReferencedProfile::Orvex_SoftwareUpdateReferencedProfile(
    core::CimInstance* antecedent, core::CimInstance* dependent) {
  Antecedent.setTarget(antecedent);
  Dependent.setTarget(dependent);
  core::markKeys(*this);
}

Orvex_SoftwareUpdateReferencedProfileClass::Orvex_SoftwareUpdateReferencedProfileClass()
    : InstanceProvider(Orvex_SoftwareUpdateReferencedProfile::kClassName,
                       {kLog, kGetInstances, "getInstances", "ReferencedProfile::getInstances"}) {}

void Orvex_SoftwareUpdateReferencedProfileClass::refresh() {
  instances().clear();
  const agent::Instances profiles =
      agent::findInstances(Orvex_SoftwareUpdateRegisteredProfile::kClassName);
  utils::logDebug(kLog, kGetInstances, "Orvex_RegisteredProfile return %d instances",
                  static_cast<int>(profiles.size()));
  core::CimInstance* portProfile = nullptr;
  core::CimInstance* updateProfile = nullptr;
  for (core::CimInstance* profile : profiles) {
    const std::string instanceId = agent::getPropertyText(*profile, "InstanceID");
    if (instanceId == kPortProfileId) {
      portProfile = profile;
    } else if (instanceId == Orvex_SoftwareUpdateRegisteredProfile::kInstanceId) {
      updateProfile = profile;
    }
  }
  if (portProfile != nullptr && updateProfile != nullptr) {
    instances().add(new Orvex_SoftwareUpdateReferencedProfile(portProfile, updateProfile));
  }
}
