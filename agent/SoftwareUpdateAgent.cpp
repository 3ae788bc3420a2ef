#include "agent/SoftwareUpdateAgent.h"

#include <memory>
#include <new>

#include "Os/QuorvelConfig.h"
#include "agent/AgentTexts.h"
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
#include "cim/SchemaTexts.h"
#include "core/ClassTexts.h"
#include "core/DeclareClass.h"
#include "midapi/MidApi.h"

namespace core {
namespace {

// A literal: the load hook may run before the initialisers of other files.
constexpr const char* kAgentName = "Software Update";

// Returns null where there is no memory, which the registry refuses.
template <class Provider>
std::unique_ptr<CimClass> make() {
  return std::unique_ptr<CimClass>(new (std::nothrow) Provider);
}

// The providers, in the order of their registration.
constexpr std::unique_ptr<CimClass> (*kProviders[])() = {
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
  ma::useSettings(utils::QuorvelConfig::currentFlashSettings);
  for (const auto& makeProvider : kProviders) {
    std::unique_ptr<CimClass> provider = makeProvider();
    getClasses().add(provider.get());
    static_cast<void>(provider.release());
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

void SoftwareUpdateAgent::describeClasses(ClassTexts& texts) const {
  cim::addSchemaTexts(texts);
  texts.add(agent::getAgentTexts());
}

}  // namespace core
