#include "agent/SoftwareUpdateAgent.h"

#include "agent/Orvex_AffectedJobElement.h"
#include "agent/Orvex_ConcreteJob.h"
#include "agent/Orvex_ConcreteJobClass.h"
#include "agent/Orvex_OwningJobElement.h"
#include "agent/Orvex_ServiceAffectsElement.h"
#include "agent/Orvex_SoftwareInstallationService.h"
#include "agent/Orvex_SoftwareInstallationServiceCapabilities.h"
#include "agent/Orvex_SoftwareUpdateElementCapabilities.h"
#include "agent/Orvex_SoftwareUpdateElementConformsToProfile.h"
#include "agent/Orvex_SoftwareUpdateReferencedProfile.h"
#include "agent/Orvex_SoftwareUpdateRegisteredProfile.h"
#include "core/DeclareClass.h"

namespace core {
namespace {

// A literal: the load hook may run before the initialisers of other files.
constexpr const char* kAgentName = "Software Update";

template <class Provider>
CimClass* make() {
  return new Provider;
}

// The providers, in the order of their registration.
constexpr CimClass* (*kProviders[])() = {
    make<Orvex_SoftwareInstallationServiceClass>,
    make<Orvex_SoftwareInstallationServiceCapabilitiesClass>,
    make<Orvex_SoftwareUpdateRegisteredProfileClass>,
    make<Orvex_SoftwareUpdateElementCapabilitiesClass>,
    make<Orvex_SoftwareUpdateElementConformsToProfileClass>,
    make<Orvex_SoftwareUpdateReferencedProfileClass>,
    make<Orvex_ServiceAffectsElementClass>,
    make<Orvex_ConcreteJobClass>,
    make<Orvex_AffectedJobElementClass>,
    make<Orvex_OwningJobElementClass>,
};

}  // namespace

SoftwareUpdateAgent::SoftwareUpdateAgent() : CimAgent(kAgentName) {
  for (const auto& makeProvider : kProviders) {
    getClasses().add(makeProvider());
  }
}

SoftwareUpdateAgent::~SoftwareUpdateAgent() = default;

void SoftwareUpdateAgent::declareClasses(CimSchema& schema) const {
  declarePlainClasses<
      Orvex_SoftwareInstallationService, Orvex_SoftwareInstallationServiceCapabilities,
      Orvex_SoftwareUpdateRegisteredProfile, Orvex_SoftwareUpdateElementCapabilities,
      Orvex_SoftwareUpdateElementConformsToProfile, Orvex_SoftwareUpdateReferencedProfile,
      Orvex_ServiceAffectsElement, Orvex_ConcreteJob, Orvex_AffectedJobElement,
      Orvex_OwningJobElement>(schema);
}

}  // namespace core
