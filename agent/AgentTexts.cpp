#include "agent/AgentTexts.h"

#include "cim/SchemaTexts.h"

namespace agent {
namespace {

using core::ClassText;

// The properties are all those of the schema's classes.
constexpr ClassText kTexts[] = {
    {"Orvex_SoftwareInstallationService",
     "The service through which the firmware of the Ethernet adapters is updated.",
     {},
     {},
     cim::kOrvexVersion},
    {"Orvex_SoftwareInstallationServiceCapabilities",
     "What the service that updates firmware accepts.",
     {},
     {},
     cim::kOrvexVersion},
    {"Orvex_ElementCapabilities",
     "The service that updates firmware has its capabilities.",
     {},
     {},
     cim::kOrvexVersion},
    {"Orvex_ReferencedProfile",
     "The software update profile builds on the Ethernet port profile, where that is served.",
     {},
     {},
     cim::kOrvexVersion},
    {"Orvex_ServiceAffectsElement",
     "What the service can update: each adapter with an updatable port, these ports, and the "
     "firmware "
     "images that can be installed.",
     {},
     {},
     cim::kOrvexVersion},
    {"Orvex_ConcreteJob",
     "An update that was started; it stays listed until the process ends.",
     {},
     {},
     cim::kOrvexVersion},
    {"Orvex_AffectedJobElement",
     "An update changes an adapter and all of its ports.",
     {},
     {},
     cim::kOrvexVersion},
    {"Orvex_OwningJobElement",
     "The service that updates firmware owns the updates that it started.",
     {},
     {},
     cim::kOrvexVersion},
};

}  // namespace

std::span<const ClassText> getAgentTexts() {
  return kTexts;
}

}  // namespace agent
