#include "agent/SoftwareUpdateAgent.h"

#include "agent/Orvex_ConcreteJobClass.h"
#include "agent/Orvex_SoftwareInstallationService.h"

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
    make<Orvex_ConcreteJobClass>,
};

}  // namespace

SoftwareUpdateAgent::SoftwareUpdateAgent() : CimAgent(kAgentName) {
  for (const auto& makeProvider : kProviders) {
    getClasses().add(makeProvider());
  }
}

SoftwareUpdateAgent::~SoftwareUpdateAgent() = default;

}  // namespace core
