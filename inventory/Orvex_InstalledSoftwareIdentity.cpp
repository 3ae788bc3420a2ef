#include "inventory/Orvex_InstalledSoftwareIdentity.h"

#include "inventory/Instances.h"
#include "inventory/Orvex_ComputerSystem.h"
#include "inventory/Orvex_SoftwareIdentity.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_InstalledSoftwareIdentity"};

}  // namespace

Orvex_InstalledSoftwareIdentity::Orvex_InstalledSoftwareIdentity(core::CimInstance* system,
                                                                 core::CimInstance* software) {
  System.setTarget(system);
  InstalledSoftware.setTarget(software);
  core::markKeys(*this);
}

Orvex_InstalledSoftwareIdentityClass::Orvex_InstalledSoftwareIdentityClass()
    : InstanceProvider(Orvex_InstalledSoftwareIdentity::kClassName,
                       {kLog, "Orvex_InstalledSoftwareIdentityClass::getInstances", "getInstances",
                        "InstalledSoftwareIdentity::getInstances"}) {}

void Orvex_InstalledSoftwareIdentityClass::refresh() {
  instances().clear();
  const auto systems = inventory::findInstances<Orvex_ComputerSystem>();
  for (Orvex_SoftwareIdentity* software : inventory::findInstances<Orvex_SoftwareIdentity>()) {
    for (Orvex_ComputerSystem* system : systems) {
      if (software->getImageKind() == Orvex_SoftwareIdentity::kInstalledComponent) {
        instances().add(new Orvex_InstalledSoftwareIdentity(system, software));
      }
    }
  }
}
