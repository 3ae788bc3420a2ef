#include "agent/Orvex_SoftwareUpdateElementConformsToProfile.h"

#include "agent/Instances.h"
#include "agent/Orvex_SoftwareInstallationService.h"
#include "agent/Orvex_SoftwareUpdateRegisteredProfile.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_SoftwareUpdateElementConformsToProfile"};
constexpr const char* kGetInstances =
    "Orvex_SoftwareUpdateElementConformsToProfileClass::getInstances";

}  // namespace

Orvex_SoftwareUpdateElementConformsToProfile::Orvex_SoftwareUpdateElementConformsToProfile(
    core::CimInstance* profile, core::CimInstance* service) {
  ConformantStandard.setTarget(profile);
  ManagedElement.setTarget(service);
  core::markKeys(*this);
}

Orvex_SoftwareUpdateElementConformsToProfileClass::
    Orvex_SoftwareUpdateElementConformsToProfileClass()
    : InstanceProvider(
          Orvex_SoftwareUpdateElementConformsToProfile::kClassName,
          {kLog, kGetInstances, "getInstances", "ElementConformsToProfile::getInstances"}) {}

void Orvex_SoftwareUpdateElementConformsToProfileClass::refresh() {
  instances().clear();
  const agent::Instances profiles =
      agent::findInstances(Orvex_SoftwareUpdateRegisteredProfile::kClassName);
  utils::logDebug(kLog, kGetInstances, "Orvex_RegisteredProfile return %d instances",
                  static_cast<int>(profiles.size()));
  const agent::Instances services =
      agent::findInstances(Orvex_SoftwareInstallationService::kClassName);
  utils::logDebug(kLog, kGetInstances, "Orvex_SoftwareInstallationService return %d instances",
                  static_cast<int>(services.size()));
  for (core::CimInstance* profile : profiles) {
    const std::string instanceId = agent::getPropertyText(*profile, "InstanceID");
    utils::logDebug(kLog, kGetInstances, "['%s']", instanceId.c_str());
    if (instanceId != Orvex_SoftwareUpdateRegisteredProfile::kInstanceId) {
      continue;
    }
    for (core::CimInstance* service : services) {
      utils::logDebug(kLog, kGetInstances, "['%s']",
                      agent::getPropertyText(*service, "Name").c_str());
      instances().add(new Orvex_SoftwareUpdateElementConformsToProfile(profile, service));
    }
  }
}
