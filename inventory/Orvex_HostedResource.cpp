#include "inventory/Orvex_HostedResource.h"

#include "inventory/Instances.h"
#include "inventory/Orvex_ComputerSystem.h"
#include "inventory/Orvex_SoftwareIdentityResource.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_HostedResource"};

}  // namespace

Orvex_HostedResource::Orvex_HostedResource(core::CimInstance* system, core::CimInstance* resource) {
  Antecedent.setTarget(system);
  Dependent.setTarget(resource);
  core::markKeys(*this);
}

Orvex_HostedResourceClass::Orvex_HostedResourceClass()
    : InstanceProvider(Orvex_HostedResource::kClassName,
                       {kLog, "Orvex_HostedResourceClass::getInstances", "getInstances",
                        "HostedResource::getInstances"}) {}

void Orvex_HostedResourceClass::refresh() {
  instances().clear();
  const auto systems = inventory::findInstances<Orvex_ComputerSystem>();
  const auto resources = inventory::findInstances<Orvex_SoftwareIdentityResource>();
  for (Orvex_ComputerSystem* system : systems) {
    for (Orvex_SoftwareIdentityResource* resource : resources) {
      instances().add(new Orvex_HostedResource(system, resource));
    }
  }
}
