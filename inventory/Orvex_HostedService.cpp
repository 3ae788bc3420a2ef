#include "inventory/Orvex_HostedService.h"

#include "inventory/Instances.h"
#include "inventory/Orvex_ComputerSystem.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_HostedService"};
// Of the update agent, if there is one.
constexpr const char* kServiceClass = "Orvex_SoftwareInstallationService";

}  // namespace

Orvex_HostedService::Orvex_HostedService(core::CimInstance* system, core::CimInstance* service) {
  Antecedent.setTarget(system);
  Dependent.setTarget(service);
  core::markKeys(*this);
}

Orvex_HostedServiceClass::Orvex_HostedServiceClass()
    : InstanceProvider(Orvex_HostedService::kClassName,
                       {kLog, "Orvex_HostedServiceClass::getInstances", "getInstances",
                        "HostedService::getInstances"}) {}

void Orvex_HostedServiceClass::refresh() {
  instances().clear();
  const auto systems = inventory::findInstances<Orvex_ComputerSystem>();
  for (core::CimInstance* service : core::GetCimBroker().getInstances(kServiceClass)) {
    for (Orvex_ComputerSystem* system : systems) {
      instances().add(new Orvex_HostedService(system, service));
    }
  }
}
