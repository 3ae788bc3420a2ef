#include "agent/Orvex_SoftwareUpdateElementCapabilities.h"

#include "Utils/Assert.h"
#include "agent/Instances.h"
#include "agent/Orvex_SoftwareInstallationService.h"
#include "agent/Orvex_SoftwareInstallationServiceCapabilities.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_SoftwareUpdateElementCapabilities"};
constexpr const char* kGetInstances = "Orvex_SoftwareUpdateElementCapabilitiesClass::getInstances";

// The numbers of the DMTF class CIM_ElementCapabilities.
constexpr std::uint16_t kDefault = 2;
constexpr std::uint16_t kCurrent = 3;

}  // namespace

Orvex_SoftwareUpdateElementCapabilities::Orvex_SoftwareUpdateElementCapabilities(
    core::CimInstance* service, core::CimInstance* capabilities) {
  ManagedElement.setTarget(service);
  Capabilities.setTarget(capabilities);
  core::markKeys(*this);
  Characteristics.setValue({kDefault, kCurrent});
}

Orvex_SoftwareUpdateElementCapabilitiesClass::Orvex_SoftwareUpdateElementCapabilitiesClass()
    : InstanceProvider(Orvex_SoftwareUpdateElementCapabilities::kClassName,
                       {kLog, kGetInstances, "getInstances",
                        "Orvex_SoftwareUpdateElementCapabilitiesClass::getInstances"}) {}

void Orvex_SoftwareUpdateElementCapabilitiesClass::refresh() {
  if (instances().size() != 0) {
    // Both ends are made once and live as long as the agent; so does what connects them.
    return;
  }
  const agent::Instances services =
      agent::findInstances(Orvex_SoftwareInstallationService::kClassName);
  const agent::Instances capabilities =
      agent::findInstances(Orvex_SoftwareInstallationServiceCapabilities::kClassName);
  // The conditions are part of the messages that clients see, and so stay to the letter.
  ORVEX_ASSERT(kLog, (int)services.size() == 1);
  ORVEX_ASSERT(kLog, (int)capabilities.size() == 1);
  instances().add(
      new Orvex_SoftwareUpdateElementCapabilities(services.front(), capabilities.front()));
}
