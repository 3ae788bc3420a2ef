#include "agent/Orvex_AffectedJobElement.h"

#include <algorithm>

#include "agent/Instances.h"
#include "agent/Orvex_ConcreteJob.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_PortController.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_AffectedJobElement"};
constexpr const char* kGetInstances = "Orvex_AffectedJobElementClass::getInstances";

}  // namespace

Orvex_AffectedJobElement::Orvex_AffectedJobElement(core::CimInstance* element,
                                                   core::CimInstance* job) {
  AffectedElement.setTarget(element);
  AffectingElement.setTarget(job);
  core::markKeys(*this);
}

Orvex_AffectedJobElementClass::Orvex_AffectedJobElementClass()
    : InstanceProvider(
          Orvex_AffectedJobElement::kClassName,
          {kLog, kGetInstances, "getInstances", "Orvex_AffectedJobElementClass::getInstances"}) {}

void Orvex_AffectedJobElementClass::refresh() {
  instances().clear();
  const auto jobs = agent::findInstancesOf<Orvex_ConcreteJob>();
  // Asked for once to find the jobs' ports and once to list the controllers'. The second
  // enumeration ends the instances of the first, so both are done with the second's.
  static_cast<void>(agent::findInstances(Orvex_EthernetPort::kClassName));
  const auto ports = agent::findInstancesOf<Orvex_EthernetPort>();
  const auto controllers = agent::findInstancesOf<Orvex_PortController>();
  for (Orvex_ConcreteJob* job : jobs) {
    const auto target = std::find_if(ports.begin(), ports.end(), [job](Orvex_EthernetPort* port) {
      return port->getIdentity() == job->getTarget();
    });
    if (target == ports.end()) {
      continue;
    }
    const auto owner = std::find_if(
        controllers.begin(), controllers.end(),
        [target](Orvex_PortController* controller) { return controller->ownsPort(**target); });
    if (owner == controllers.end()) {
      continue;
    }
    instances().add(new Orvex_AffectedJobElement(*owner, job));
    for (Orvex_EthernetPort* port : ports) {
      if ((*owner)->ownsPort(*port)) {
        instances().add(new Orvex_AffectedJobElement(port, job));
      }
    }
  }
}
