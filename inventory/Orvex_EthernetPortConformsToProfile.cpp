#include "inventory/Orvex_EthernetPortConformsToProfile.h"

#include "inventory/Instances.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_EthernetPortRegisteredProfile.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_EthernetPortConformsToProfile"};

}  // namespace

Orvex_EthernetPortConformsToProfile::Orvex_EthernetPortConformsToProfile(core::CimInstance* profile,
                                                                         core::CimInstance* port) {
  ConformantStandard.setTarget(profile);
  ManagedElement.setTarget(port);
  core::markKeys(*this);
}

Orvex_EthernetPortConformsToProfileClass::Orvex_EthernetPortConformsToProfileClass()
    : InstanceProvider(Orvex_EthernetPortConformsToProfile::kClassName,
                       {kLog, "Orvex_EthernetPortConformsToProfileClass::getInstances",
                        "getInstances", "EthernetPortConformsToProfile::getInstances"}) {}

void Orvex_EthernetPortConformsToProfileClass::refresh() {
  instances().clear();
  const auto profiles = inventory::findInstances<Orvex_EthernetPortRegisteredProfile>();
  const auto ports = inventory::findInstances<Orvex_EthernetPort>();
  for (Orvex_EthernetPortRegisteredProfile* profile : profiles) {
    for (Orvex_EthernetPort* port : ports) {
      instances().add(new Orvex_EthernetPortConformsToProfile(profile, port));
    }
  }
}
