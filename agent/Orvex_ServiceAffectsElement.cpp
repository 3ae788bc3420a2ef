#include "agent/Orvex_ServiceAffectsElement.h"

#include "Utils/Assert.h"
#include "agent/Instances.h"
#include "agent/Orvex_SoftwareInstallationService.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_PortController.h"
#include "inventory/Orvex_SoftwareIdentity.h"
#include "midapi/MidApi.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_ServiceAffectsElement"};
constexpr const char* kGetInstances = "Orvex_ServiceAffectsElementClass::getInstances";

}  // namespace

Orvex_ServiceAffectsElement::Orvex_ServiceAffectsElement(core::CimInstance* element,
                                                         core::CimInstance* service) {
  AffectedElement.setTarget(element);
  AffectingElement.setTarget(service);
  core::markKeys(*this);
}

Orvex_ServiceAffectsElementClass::Orvex_ServiceAffectsElementClass()
    : InstanceProvider(
          Orvex_ServiceAffectsElement::kClassName,
          {kLog, kGetInstances, "getInstances", "Orvex_ServiceAffectsElementClass::getInstances"}) {
}

void Orvex_ServiceAffectsElementClass::refresh() {
  instances().clear();
  const agent::Instances services =
      agent::findInstances(Orvex_SoftwareInstallationService::kClassName);
  const auto ports = agent::findInstancesOf<Orvex_EthernetPort>();
  const auto controllers = agent::findInstancesOf<Orvex_PortController>();
  const auto identities = agent::findInstancesOf<Orvex_SoftwareIdentity>();
  // The condition is part of the message that clients see, and so stays to the letter.
  ORVEX_ASSERT(kLog, (int)services.size() == 1);
  const auto affect = [&](core::CimInstance* element) {
    instances().add(new Orvex_ServiceAffectsElement(element, services.front()));
  };
  for (Orvex_PortController* controller : controllers) {
    bool isListed = false;
    for (Orvex_EthernetPort* port : ports) {
      if (controller->ownsPort(*port) && ma::getCanBeUpdated(port->getIdentity())) {
        if (!isListed) {
          affect(controller);
          isListed = true;
        }
        affect(port);
      }
    }
  }
  for (Orvex_SoftwareIdentity* identity : identities) {
    if (!identity->TargetTypes.getValue().empty() &&
        identity->getImageKind() == Orvex_SoftwareIdentity::kFirmwareImage) {
      affect(identity);
    }
  }
}
