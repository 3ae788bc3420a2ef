#include "agent/Orvex_OwningJobElement.h"

#include "Utils/Assert.h"
#include "agent/Instances.h"
#include "agent/Orvex_ConcreteJob.h"
#include "agent/Orvex_SoftwareInstallationService.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_OwningJobElement"};
constexpr const char* kGetInstances = "Orvex_OwningJobElementClass::getInstances";

}  // namespace

Orvex_OwningJobElement::Orvex_OwningJobElement(core::CimInstance* service, core::CimInstance* job) {
  OwningElement.setTarget(service);
  OwnedElement.setTarget(job);
  core::markKeys(*this);
}

Orvex_OwningJobElementClass::Orvex_OwningJobElementClass()
    : InstanceProvider(
          Orvex_OwningJobElement::kClassName,
          {kLog, kGetInstances, "getInstances", "Orvex_OwningJobElementClass::getInstances"}) {}

void Orvex_OwningJobElementClass::refresh() {
  instances().clear();
  const agent::Instances services =
      agent::findInstances(Orvex_SoftwareInstallationService::kClassName);
  const agent::Instances jobs = agent::findInstances(Orvex_ConcreteJob::kClassName);
  // The condition is part of the message that clients see, and so stays to the letter.
  ORVEX_ASSERT(kLog, (int)services.size() == 1);
  for (core::CimInstance* job : jobs) {
    instances().add(new Orvex_OwningJobElement(services.front(), job));
  }
}
