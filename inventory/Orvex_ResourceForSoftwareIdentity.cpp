#include "inventory/Orvex_ResourceForSoftwareIdentity.h"

#include <map>
#include <string>

#include "inventory/Instances.h"
#include "inventory/Orvex_SoftwareIdentity.h"
#include "inventory/Orvex_SoftwareIdentityResource.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_ResourceForSoftwareIdentity"};

}  // namespace

Orvex_ResourceForSoftwareIdentity::Orvex_ResourceForSoftwareIdentity(core::CimInstance* resource,
                                                                     core::CimInstance* software) {
  Antecedent.setTarget(resource);
  Dependent.setTarget(software);
  core::markKeys(*this);
}

Orvex_ResourceForSoftwareIdentityClass::Orvex_ResourceForSoftwareIdentityClass()
    : InstanceProvider(Orvex_ResourceForSoftwareIdentity::kClassName,
                       {kLog, "Orvex_ResourceForSoftwareIdentityClass::getInstances",
                        "getInstances", "ResourceForSoftwareIdentity::getInstances"}) {}

void Orvex_ResourceForSoftwareIdentityClass::refresh() {
  instances().clear();
  std::map<std::string, Orvex_SoftwareIdentityResource*> resources;
  for (auto* resource : inventory::findInstances<Orvex_SoftwareIdentityResource>()) {
    resources.emplace(resource->getFirmwareFileID(), resource);
  }
  for (Orvex_SoftwareIdentity* software : inventory::findInstances<Orvex_SoftwareIdentity>()) {
    const auto resource = software->getImageKind() == Orvex_SoftwareIdentity::kFirmwareImage
                              ? resources.find(software->getIdentity())
                              : resources.end();
    if (resource != resources.end()) {
      instances().add(new Orvex_ResourceForSoftwareIdentity(resource->second, software));
    }
  }
}
